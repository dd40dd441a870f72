#include "pointlocation/PointLocationJson.h"

#include "frame/Companions.h"
#include "frame/JsonKey.h"
#include "frame/ProjectIdentifier.h"

#include <QCborArray>
#include <QJsonArray>

namespace rk {

namespace {

namespace key {
constexpr auto id = jsonKey("_id");
constexpr auto projectId = jsonKey("projectId");
constexpr auto cellId = jsonKey("cellId");
constexpr auto name = jsonKey("name");
constexpr auto category = jsonKey("category");
constexpr auto subCategoryId = jsonKey("subCategoryId");
constexpr auto alias = jsonKey("alias");
constexpr auto dataType = jsonKey("dataType");
constexpr auto initialValue = jsonKey("initialValue");
constexpr auto offsetDirection = jsonKey("offsetDirection");
constexpr auto depth = jsonKey("depth");
constexpr auto insertCount = jsonKey("insertCount");
constexpr auto lastCount = jsonKey("lastCount");
constexpr auto lastDate = jsonKey("lastDate");
constexpr auto data = jsonKey("data");
constexpr auto entity = jsonKey("entity");
constexpr auto links = jsonKey("links");
constexpr auto fileId = jsonKey("fileId");
constexpr auto createdAt = jsonKey("createdAt");
constexpr auto createdBy = jsonKey("createdBy");
constexpr auto updatedAt = jsonKey("updatedAt");
constexpr auto updatedBy = jsonKey("updatedBy");
constexpr auto count = jsonKey("count");
constexpr auto time = jsonKey("time");
constexpr auto value = jsonKey("value");
constexpr auto timeFlag = jsonKey("timeFlag");
} // namespace key

} // namespace

void sampleFromJson(const QCborMap& object, RKPointLocationData& sample)
{
    // Through QJsonValue: QCborValue would cut a fraction off, which reads as 0 here.
    sample.count = object.value(key::count).toJsonValue().toInt(0);
    sample.time = RKPub::getDateTimeByQString(object.value(key::time).toString());
    sample.value = object.value(key::value).toDouble(0.0);
    sample.timeFlag = object.value(key::timeFlag).toString();
}

QJsonObject sampleToJson(const RKPointLocationData& sample)
{
    QJsonObject object;
    object.insert(key::count, sample.count);
    object.insert(key::time, RKPub::getQStringByDateTime(sample.time));
    object.insert(key::value, sample.value);
    object.insert(key::timeFlag, sample.timeFlag);
    return object;
}

namespace {

// Appends the samples of a point's "data".
void samplesFromJson(const QCborArray& elements, QList<RKPointLocationData>& samples)
{
    samples.reserve(samples.size() + int(elements.size()));
    QString timeFlag;
    for (const QCborValueRef element : elements) {
        // Filled where it lies: a copy costs as much as reading a member.
        samples.append(RKPointLocationData());
        RKPointLocationData& sample = samples.last();
        sampleFromJson(element.toMap(), sample);
        // Time slots are few: neighbours in the same one share its text.
        if (sample.timeFlag == timeFlag) {
            sample.timeFlag = timeFlag;
        } else {
            timeFlag = sample.timeFlag;
        }
    }
}

} // namespace

void pointLocationFromJson(const QJsonObject& object, RKPointLocation& record)
{
    record.id = object.value(key::id).toString();
    record.cellId = object.value(key::cellId).toString();
    record.name = object.value(key::name).toString();
    record.category = object.value(key::category).toString();
    record.dataType = object.value(key::dataType).toInt(0);
    // An integer on purpose, though it is written as it is: a value with a fraction reads as 0.
    record.initialValue = object.value(key::initialValue).toInt(0);
    record.offsetDirection = object.value(key::offsetDirection).toString();
    record.depth = object.value(key::depth).toString();
    record.insertCount = object.value(key::insertCount).toInt(0);
    record.lastCount = object.value(key::lastCount).toInt(0);
    record.lastDate = RKPub::getDateTimeByQString(object.value(key::lastDate).toString());
    record.createdAt = RKPub::getDateTimeByQString(object.value(key::createdAt).toString());
    record.createdBy = object.value(key::createdBy).toString();
    record.updatedAt = RKPub::getDateTimeByQString(object.value(key::updatedAt).toString());
    record.updatedBy = object.value(key::updatedBy).toString();

    samplesFromJson(QCborArray::fromJsonArray(object.value(key::data).toArray()), record.data);
    record.links = RKPub::jsonArrayToLinksEntity(object.value(key::entity).toArray());
}

void pointLocationToJson(const RKPointLocation& record, QJsonObject& body)
{
    body.insert(key::projectId, projectIdentifierValue());
    body.insert(key::cellId, record.cellId);
    body.insert(key::name, record.name);
    body.insert(key::alias, record.alias);
    body.insert(key::subCategoryId, record.subCategoryId);
    body.insert(key::dataType, record.dataType);
    body.insert(key::initialValue, record.initialValue);
    body.insert(key::offsetDirection, record.offsetDirection);
    body.insert(key::depth, record.depth);
    body.insert(key::insertCount, record.insertCount);
    body.insert(key::lastCount, record.lastCount);
    body.insert(key::fileId,
                record.fileId.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(record.fileId));
    body.insert(key::lastDate, RKPub::getQStringByDateTime(record.lastDate));
    body.insert(key::links, RKPub::linksEntityToJsonArray(record.links));

    QJsonArray samples;
    for (const RKPointLocationData& sample : record.data) {
        samples.append(sampleToJson(sample));
    }
    body.insert(key::data, samples);
}

RKPointLocationChartData chartEntryFromJson(const QJsonObject& object)
{
    RKPointLocationChartData entry;
    entry.id = object.value(key::id).toString();
    entry.name = object.value(key::name).toString();
    entry.depth = object.value(key::depth).toString();
    entry.count = object.value(key::count).toInt(0);
    entry.value = object.value(key::value).toDouble(0.0);
    entry.time = RKPub::getDateTimeByQString(object.value(key::time).toString());
    entry.entity = RKPub::jsonArrayToLinksEntity(object.value(key::entity).toArray());
    return entry;
}

} // namespace rk
