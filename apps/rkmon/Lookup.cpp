#include "Lookup.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "MonitoringFilter.h"
#include "Pages.h"

#include <QRegularExpression>
#include <QStringList>

namespace lookup {

namespace {

QString severalText(const QString& kind, const QString& text, const QStringList& ids)
{
    return QStringLiteral("several %1 are called \"%2\"; say which by its identifier: %3")
        .arg(kind, text, ids.join(QStringLiteral(", ")));
}

} // namespace

CLI::Option* addCellOption(CLI::App& app, QString& cell)
{
    return options::addText(app, "--cell", cell, "The monitoring, by identifier or exact name")
        ->type_name("MONITORING");
}

bool isIdentifier(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9a-fA-F]{24}\\z"));
    return form.match(text).hasMatch();
}

std::optional<RKMonitoring> monitoringNamed(Session& session, const QString& name)
{
    MonitoringFilter filter;
    filter.exactName = name;
    const RKMonitoringCondition condition = conditionOf(filter);
    QList<RKMonitoring> found;
    session.ask(QStringLiteral("find the monitoring \"%1\"").arg(name),
                [&] { return session.projectData().getMonitoringRangeData(condition, 0, pageRows, found); });
    QStringList ids;
    for (const RKMonitoring& monitoring : qAsConst(found)) {
        ids.append(monitoring.id);
    }
    if (found.size() > 1) {
        throw Failure(ExitCode::Usage, severalText(QStringLiteral("monitorings"), name, ids));
    }
    return found.isEmpty() ? std::nullopt : std::make_optional(found.constFirst());
}

RKMonitoring monitoring(Session& session, const QString& text)
{
    if (!isIdentifier(text)) {
        const auto found = monitoringNamed(session, text);
        if (!found) {
            throw Failure(
                ExitCode::NotFound,
                QStringLiteral("there is no monitoring \"%1\"; rkmon monitoring ids lists them").arg(text));
        }
        return *found;
    }
    const QString purpose = QStringLiteral("read monitoring %1").arg(text);
    RKMonitoring monitoring;
    session.ask(purpose, [&] { return session.projectData().getMonitoringById(text, monitoring, false); });
    if (monitoring.id.compare(text, Qt::CaseInsensitive) != 0) {
        throw Failure(ExitCode::Failed,
                      QStringLiteral("cannot %1: the answer is not that of this monitoring").arg(purpose));
    }
    return monitoring;
}

QList<RKMonitoringSubCategory> subCategories(Session& session, const QString& category)
{
    QList<RKMonitoringSubCategory> found;
    session.ask(QStringLiteral("list the sub-categories of \"%1\"").arg(category),
                [&] { return session.projectData().getMonitoringSubCategory(category, found); });
    return found;
}

QString monitoringName(Session& session, const QString& id)
{
    if (id.isEmpty()) {
        return QString();
    }
    return session.recall(QStringLiteral("read monitoring %1").arg(id),
                          [&] { return session.data().getMonitoringName(id); });
}

void readMonitoringNames(Session& session, const QSet<QString>& ids)
{
    if (ids.size() < 2) {
        return;
    }
    QList<RKMonitoring> monitorings;
    session.ask(QStringLiteral("list monitorings"), [&] {
        return session.projectData().getMonitoringRangeData(RKMonitoringCondition(), 0, pageRows,
                                                            monitorings);
    });
}

QString subCategoryName(Session& session, const QString& id)
{
    if (id.isEmpty()) {
        return QString();
    }
    RKMonitoringSubCategory subCategory;
    session.recall(QStringLiteral("read sub-category %1").arg(id),
                   [&] { return session.data().getSubCategoryById(id, subCategory); });
    return subCategory.name;
}

std::optional<RKMonitoringSubCategory> subCategoryAmong(const QList<RKMonitoringSubCategory>& known,
                                                        const QString& text)
{
    QList<RKMonitoringSubCategory> found;
    QStringList ids;
    for (const RKMonitoringSubCategory& subCategory : known) {
        if (subCategory.id == text) {
            return subCategory;
        }
        if (subCategory.name == text || subCategory.alias == text) {
            found.append(subCategory);
            ids.append(subCategory.id);
        }
    }
    if (found.size() > 1) {
        throw Failure(ExitCode::Usage, severalText(QStringLiteral("sub-categories"), text, ids));
    }
    return found.isEmpty() ? std::nullopt : std::make_optional(found.constFirst());
}

RKMonitoringSubCategory subCategory(Session& session, const QString& category, const QString& text)
{
    const auto found = subCategoryAmong(subCategories(session, category), text);
    if (!found) {
        throw Failure(ExitCode::NotFound,
                      QStringLiteral("\"%1\" has no sub-category \"%2\"; rkmon subcategory list shows them")
                          .arg(category, text));
    }
    return *found;
}

} // namespace lookup
