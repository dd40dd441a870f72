#include "PointTarget.h"

#include "CommandOptions.h"
#include "Identifier.h"
#include "Lookup.h"
#include "PagedReading.h"
#include "PointNames.h"

namespace {

QJsonObject conditionOf(Session& session, const PointTarget& target)
{
    const QString text = target.point.isEmpty() ? target.name : target.point;
    if (isIdentifier(target.point)) {
        return {{QStringLiteral("_id"), target.point.toLower()}};
    }
    QJsonObject where{{QStringLiteral("name"), text}};
    QString category;
    if (!target.cell.isEmpty()) {
        const RKMonitoring monitoring = lookup::monitoring(session, target.cell);
        where.insert(QStringLiteral("cellId"), monitoring.id);
        category = monitoring.category;
    }
    if (!target.subCategory.isEmpty()) {
        const RKMonitoringSubCategory subCategory =
            category.isEmpty() ? lookup::subCategory(session, target.subCategory)
                               : lookup::subCategory(session, category, target.subCategory);
        where.insert(QStringLiteral("subCategoryId"), subCategory.id);
    }
    return where;
}

QString candidateText(Session& session, const PointSummary& point)
{
    return QStringLiteral("%1 (%2 of %3, %4)")
        .arg(point.id, pointText(point.name, point.depth), lookup::monitoringName(session, point.cellId),
             lookup::subCategoryName(session, point.subCategoryId));
}

} // namespace

void addPointTargetOptions(CLI::App& app, PointTarget& target)
{
    CLI::Option* point =
        options::addText(app, "POINT", target.point, "Identifier, or name of the point")->type_name("POINT");
    options::addText(app, "--name", target.name, "Its name")->type_name("NAME")->excludes(point);
    options::addCell(app, target.cell);
    options::addText(app, "--depth", target.depth, "Its depth")->type_name("DEPTH");
    options::addSubCategory(app, target.subCategory, "What it measures, by identifier, name or alias");
}

PointSummary findPoint(Session& session, const PointTarget& target)
{
    if (target.point.isEmpty() && target.name.isEmpty()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("which point? Give its identifier, or --cell and --name"));
    }
    session.projectData(); // refused first when there is no project
    PointSummaryQuery query;
    query.where = conditionOf(session, target);
    const QList<PointSummary> points =
        session.extensions().pointSummaries(session.project(), query, 0, paging::pageRows);
    QList<PointSummary> found;
    for (const PointSummary& point : points) {
        if (target.depth.isEmpty() || isSameDepth(point.depth, target.depth)) {
            found.append(point);
        }
    }
    const QString text = target.point.isEmpty() ? target.name : target.point;
    if (found.isEmpty()) {
        throw Failure(FailureKind::NotFound, QStringLiteral("there is no such point \"%1\"").arg(text));
    }
    if (found.size() > 1) {
        constexpr int mostCandidates = 10;
        QStringList candidates;
        for (const PointSummary& point : found.mid(0, mostCandidates)) {
            candidates.append(candidateText(session, point));
        }
        throw Failure(FailureKind::BadInput, lookup::severalText(QStringLiteral("points"), text, candidates));
    }
    return found.constFirst();
}

QString titleOf(const PointDetails& point)
{
    return QStringLiteral("%1 (%2)").arg(pointText(point.name, point.depth), point.id);
}
