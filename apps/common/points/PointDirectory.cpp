#include "points/PointDirectory.h"

#include "DataHeld.h"
#include "extensions/ServiceExtensions.h"
#include "points/PointOrigins.h"
#include "points/PointSummaries.h"

PointDirectory::PointDirectory(ServiceSession& session, const RKMonitoring& monitoring,
                               const QStringList& names)
    : m_session(session), m_monitoring(monitoring), m_names(names)
{
    session.projectData(); // refused first when there is no project
    if (session.extensions().has(Extension::PointSummaries)) {
        readSummaries();
    } else {
        workOutSubCategories();
    }
}

void PointDirectory::readSummaries()
{
    const QList<PointSummary> summaries = summariesOfPoints(m_session, m_monitoring.id, m_names);
    for (const PointSummary& point : summaries) {
        m_subCategories.insert(point.id, point.subCategoryId);
        if (point.reference) {
            m_references.insert(point.id, {*point.reference, false});
        }
        if (point.initialValue) {
            m_initialValues.insert(point.id, *point.initialValue);
        }
    }
    m_hasReferences = true;
    m_isTold = true;
}

void PointDirectory::workOutSubCategories()
{
    RKDataManageCondition condition;
    condition.cellId = m_monitoring.id;
    const QList<RKDataManage> held = dataheld::readAll(m_session, condition);
    if (held.size() < 2) {
        m_onlySubCategory = held.isEmpty() ? QString() : held.constFirst().subCategoryId;
        return;
    }
    const PointOrigins origins(m_session, m_monitoring.id, {m_names}, held);
    for (const QString& pointId : origins.points()) {
        const QSet<QString> subCategories = origins.subCategoriesOf(pointId);
        if (subCategories.size() == 1) {
            m_subCategories.insert(pointId, *subCategories.cbegin());
        }
    }
}

void PointDirectory::workOutReferences()
{
    RKPointLocationCondition condition;
    condition.cellId = m_monitoring.id;
    condition.names = m_names;
    QList<RKPointLocation> points;
    m_session.ask(QStringLiteral("read the initial values of \"%1\"").arg(m_monitoring.name),
                  [&] { return m_session.projectData().getPointLocation(condition, points, false); });
    for (const RKPointLocation& point : qAsConst(points)) {
        if (point.initialValue != 0.0) {
            m_references.insert(point.id, {point.initialValue, false});
        } else if (!point.data.isEmpty()) {
            m_references.insert(point.id, {point.data.constFirst().value, true});
        }
    }
}

std::optional<ReferenceValue> PointDirectory::referenceOf(const QString& pointId)
{
    if (!m_hasReferences) {
        workOutReferences();
        m_hasReferences = true;
    }
    return knownReferenceOf(pointId);
}

std::optional<ReferenceValue> PointDirectory::toldReferenceOf(const QString& pointId) const
{
    return m_isTold ? knownReferenceOf(pointId) : std::nullopt;
}

std::optional<ReferenceValue> PointDirectory::knownReferenceOf(const QString& pointId) const
{
    const auto found = m_references.constFind(pointId);
    return found == m_references.constEnd() ? std::nullopt : std::make_optional(*found);
}

std::optional<double> PointDirectory::initialValueOf(const QString& pointId) const
{
    const auto found = m_initialValues.constFind(pointId);
    return found == m_initialValues.constEnd() ? std::nullopt : std::make_optional(*found);
}
