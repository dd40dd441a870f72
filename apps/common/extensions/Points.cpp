#include "extensions/Points.h"

#include "extensions/ServiceRequest.h"

#include <cmath>

namespace extensions {

namespace {

// The members that every answer about a point has.
void fillPoint(const AnswerObject& object, PointDetails& point)
{
    point.id = object.identifier("_id");
    point.cellId = object.identifier("cellId");
    point.subCategoryId = object.identifier("subCategoryId");
    point.name = object.text("name");
    point.depth = object.text("depth");
    point.alias = object.text("alias");
    point.dataType = object.smallInteger("dataType");
    const double initialValue = object.number("initialValue");
    point.initialValue = object.flag("hasInitialValue") ? std::make_optional(initialValue) : std::nullopt;
    point.offsetDirection = object.text("offsetDirection");
    point.samples = object.integer("insertCount");
    point.latestTime = object.timeOrEmpty("lastDate");
}

PointDetails pointOf(const AnswerObject& object)
{
    PointDetails point;
    fillPoint(object, point);
    return point;
}

DeletedPoint deletedPointOf(const AnswerObject& object)
{
    DeletedPoint point;
    fillPoint(object, point);
    point.removedSamples = object.integer("removed");
    point.alarms = object.texts("alarms");
    return point;
}

DeletedSamples deletedSamplesOf(const AnswerObject& object)
{
    DeletedSamples samples;
    samples.pointId = object.identifier("_id");
    samples.removed = object.integer("removed");
    samples.alarms = object.texts("alarms");
    return samples;
}

RKPointLocationData sampleOf(const AnswerObject& object)
{
    RKPointLocationData sample;
    sample.count = object.smallInteger("count");
    sample.time = object.time("time");
    sample.value = object.number("value");
    sample.timeFlag = object.text("timeFlag");
    return sample;
}

PointSummary summaryOf(const AnswerObject& object, bool withExtremes)
{
    PointSummary summary;
    fillPoint(object, summary);
    summary.category = object.text("category");
    summary.reference = object.numberOrNull("reference");
    if (withExtremes) {
        summary.minimum = object.numberOrNull("minimum");
        summary.maximum = object.numberOrNull("maximum");
    }
    const QList<AnswerObject> samples = object.objects("data");
    if (samples.size() > 1) {
        object.refuse("data", QStringLiteral("more than the latest sample"));
    }
    if (!samples.isEmpty()) {
        summary.latest = sampleOf(samples.constFirst());
    }
    return summary;
}

ListRequest summaryList(const QString& project, const PointSummaryQuery& query)
{
    return {resourcePath("projects/%1/pointLocations", project), query.where, query.order,
            query.withExtremes ? QStringLiteral("samples=latest&rollup=true")
                               : QStringLiteral("samples=latest")};
}

QJsonObject pointChangeBody(const PointChange& change)
{
    QJsonObject body;
    if (change.initialValue) {
        // JSON has no other numbers; null would take the initial value back.
        if (!std::isfinite(*change.initialValue)) {
            throw Failure(FailureKind::BadInput, QStringLiteral("the initial value is not a number"));
        }
        body.insert(QStringLiteral("initialValue"), *change.initialValue);
    } else if (change.removesInitialValue) {
        body.insert(QStringLiteral("initialValue"), QJsonValue::Null);
    }
    if (change.alias) {
        body.insert(QStringLiteral("alias"), *change.alias);
    }
    if (change.dataType) {
        body.insert(QStringLiteral("dataType"), *change.dataType);
    }
    if (change.offsetDirection) {
        body.insert(QStringLiteral("offsetDirection"), *change.offsetDirection);
    }
    return body;
}

} // namespace

QList<PointSummary> readPointSummaries(const RequestContext& context, const QString& project,
                                       const PointSummaryQuery& query, int skip, int limit)
{
    const bool withExtremes = query.withExtremes;
    return readPage(context, summaryList(project, query), skip, limit,
                    [withExtremes](const AnswerObject& object) { return summaryOf(object, withExtremes); });
}

int countPointSummaries(const RequestContext& context, const QString& project, const PointSummaryQuery& query)
{
    return getCount(context, summaryList(project, query));
}

PointDetails changePoint(const RequestContext& context, const QString& id, const PointChange& change)
{
    return readResult(patch(context, resourcePath("pointLocations/%1", id), pointChangeBody(change)),
                      pointOf);
}

DeletedPoint deletePoint(const RequestContext& context, const QString& id)
{
    return readResult(deleteResource(context, resourcePath("pointLocations/%1", id)), deletedPointOf);
}

DeletedSamples deleteSamples(const RequestContext& context, const QString& pointId, const QJsonObject& where)
{
    const QString path = conditionPath(resourcePath("pointLocations/%1/samples", pointId), where);
    return readResult(deleteResource(context, path), deletedSamplesOf);
}

} // namespace extensions
