#include "pointlocation/PointLocationJson.h"

#include "../../support/Json.h"
#include "../../support/Text.h"

#include <QJsonArray>
#include <RKSoftCache.h>

#include <gtest/gtest.h>

namespace {

using Links = QMap<QString, QStringList>;

const QDateTime eightOClock(QDate(2015, 12, 21), QTime(8, 0), Qt::UTC);

RKPointLocation read(const char* text, RKPointLocation record = {})
{
    rk::pointLocationFromJson(jsonObject(text), record);
    return record;
}

QJsonObject written(const RKPointLocation& record)
{
    QJsonObject body;
    rk::pointLocationToJson(record, body);
    return body;
}

class PointLocationJson : public testing::Test
{
protected:
    PointLocationJson() { GetSoftCache()->setProjectId("p7"_q); }
};

TEST_F(PointLocationJson, ReadsItsMembers)
{
    const RKPointLocation point =
        read(R"({"_id":"w1","cellId":"c1","name":"VH-W1","category":"slope","dataType":3,
        "initialValue":12,"offsetDirection":"down","depth":"110","insertCount":2,"lastCount":11739,
        "lastDate":"2015-12-22T08:00:00.000Z",
        "data":[{"count":1,"time":"2015-12-21T08:00:00.000Z","value":0.25,"timeFlag":"A"},{"count":2,"value":0.5}],
        "entity":[{"type":"model","rId":"m1"},{"type":"model","rId":"m2"},{"type":"drawing"}],
        "createdAt":"2015-12-23T08:00:00.000Z","createdBy":"ann",
        "updatedAt":"2015-12-24T00:00:00.000-08:00","updatedBy":"bo"})");
    EXPECT_EQ(point.id, "w1"_q);
    EXPECT_EQ(point.cellId, "c1"_q);
    EXPECT_EQ(point.name, "VH-W1"_q);
    EXPECT_EQ(point.category, "slope"_q);
    EXPECT_EQ(point.dataType, 3);
    EXPECT_EQ(point.initialValue, 12.0);
    EXPECT_EQ(point.offsetDirection, "down"_q);
    EXPECT_EQ(point.depth, "110"_q);
    EXPECT_EQ(point.insertCount, 2);
    EXPECT_EQ(point.lastCount, 11739);
    EXPECT_EQ(point.lastDate, eightOClock.addDays(1));
    ASSERT_EQ(point.data.size(), 2);
    EXPECT_EQ(point.data.at(0).count, 1);
    EXPECT_EQ(point.data.at(0).time, eightOClock);
    EXPECT_EQ(point.data.at(0).value, 0.25);
    EXPECT_EQ(point.data.at(0).timeFlag, "A"_q);
    EXPECT_EQ(point.data.at(1).value, 0.5);
    EXPECT_EQ(point.links, (Links{{"model"_q, {"m1"_q, "m2"_q}}, {"drawing"_q, {}}}));
    EXPECT_EQ(point.createdAt, eightOClock.addDays(2));
    EXPECT_EQ(point.createdBy, "ann"_q);
    EXPECT_EQ(point.updatedAt, eightOClock.addDays(3));
    EXPECT_EQ(point.updatedBy, "bo"_q);
}

TEST_F(PointLocationJson, TheInitialValueIsReadAsAnInteger)
{
    EXPECT_EQ(read(R"({"initialValue":12})").initialValue, 12.0);
    EXPECT_EQ(read(R"({"initialValue":12.5})").initialValue, 0.0);
    EXPECT_EQ(read(R"({"initialValue":-3})").initialValue, -3.0);
    EXPECT_EQ(read(R"({"initialValue":"12"})").initialValue, 0.0);
    EXPECT_EQ(read("{}").initialValue, 0.0);
}

TEST_F(PointLocationJson, TheInitialValueIsWrittenAsItIs)
{
    RKPointLocation point;
    point.initialValue = 12.5;
    EXPECT_EQ(written(point).value("initialValue"_q), QJsonValue(12.5));
}

TEST_F(PointLocationJson, RelationsAreReadFromEntityOnly)
{
    RKPointLocation point;
    point.links = Links{{"old"_q, {"x"_q}}};
    EXPECT_TRUE(read(R"({"links":[{"type":"model","rId":"m1"}]})", point).links.isEmpty());
}

TEST_F(PointLocationJson, RelationsAreWrittenAsLinksOnly)
{
    RKPointLocation point;
    point.links = Links{{"model"_q, {"m1"_q}}};
    const QJsonObject body = written(point);
    EXPECT_EQ(body.value("links"_q).toArray(),
              (QJsonArray{QJsonObject{{"type"_q, "model"_q}, {"rId"_q, "m1"_q}}}));
    EXPECT_FALSE(body.contains("entity"_q));
}

TEST_F(PointLocationJson, FileAndProjectAreNullWhenEmpty)
{
    GetSoftCache()->setProjectId(QString());
    QJsonObject body = written({});
    EXPECT_TRUE(body.contains("fileId"_q) && body.contains("projectId"_q));
    EXPECT_TRUE(body.value("fileId"_q).isNull() && body.value("projectId"_q).isNull());

    GetSoftCache()->setProjectId("p7"_q);
    RKPointLocation point;
    point.fileId = "f1"_q;
    body = written(point);
    EXPECT_EQ(body.value("fileId"_q), QJsonValue("f1"_q));
    EXPECT_EQ(body.value("projectId"_q), QJsonValue("p7"_q));
}

TEST_F(PointLocationJson, SubCategoryAliasAndFileAreWrittenButNeverRead)
{
    RKPointLocation point;
    point.subCategoryId = "s1"_q;
    point.alias = "a"_q;
    point.fileId = "f1"_q;
    const QJsonObject body = written(point);
    EXPECT_EQ(body.value("subCategoryId"_q).toString(), "s1"_q);
    EXPECT_EQ(body.value("alias"_q).toString(), "a"_q);
    point = read(R"({"subCategoryId":"other","alias":"other","fileId":"other"})", point);
    EXPECT_EQ(point.subCategoryId, "s1"_q);
    EXPECT_EQ(point.alias, "a"_q);
    EXPECT_EQ(point.fileId, "f1"_q);
    EXPECT_TRUE(read(R"({"subCategoryId":"other"})").subCategoryId.isEmpty());
}

TEST_F(PointLocationJson, WritesExactlyItsMembers)
{
    RKPointLocation point;
    point.id = point.category = point.createdBy = point.updatedBy = "x"_q;
    point.createdAt = point.updatedAt = eightOClock.addDays(2);
    point.lastDate = eightOClock.addDays(1);
    point.cellId = "c1"_q;
    point.name = "W1"_q;
    point.depth = "2.5"_q;
    point.insertCount = 1;
    point.lastCount = 9;
    point.data = {{9, eightOClock, 0.25, "A"_q}};
    EXPECT_EQ(
        compact(written(point)),
        R"({"alias":"","cellId":"c1","data":[{"count":9,"time":"2015-12-21T08:00:00.000Z","timeFlag":"A",)"
        R"("value":0.25}],"dataType":0,"depth":"2.5","fileId":null,"initialValue":0,"insertCount":1,)"
        R"("lastCount":9,"lastDate":"2015-12-22T08:00:00.000Z","links":[],"name":"W1",)"
        R"("offsetDirection":"","projectId":"p7","subCategoryId":""})"_q);
}

TEST_F(PointLocationJson, SamplesAreAlwaysWritten)
{
    EXPECT_EQ(written({}).value("data"_q), QJsonValue(QJsonArray()));
}

TEST_F(PointLocationJson, NullTimesAreWrittenAsEmptyTexts)
{
    RKPointLocation point;
    point.data = {RKPointLocationData()};
    const QJsonObject body = written(point);
    EXPECT_EQ(body.value("lastDate"_q), QJsonValue(""_q));
    EXPECT_EQ(body.value("data"_q).toArray().at(0).toObject().value("time"_q), QJsonValue(""_q));
}

TEST_F(PointLocationJson, NoSamplesReadAsNone)
{
    EXPECT_TRUE(read("{}").data.isEmpty());
    EXPECT_TRUE(read(R"({"data":[]})").data.isEmpty());
    EXPECT_TRUE(read(R"({"data":"x"})").data.isEmpty());
}

TEST_F(PointLocationJson, SamplesAreAppended)
{
    RKPointLocation point = read(R"({"data":[{"count":1}]})");
    point = read(R"({"data":[{"count":2},7]})", point);
    ASSERT_EQ(point.data.size(), 3);
    EXPECT_EQ(point.data.at(1).count, 2);
    EXPECT_EQ(point.data.at(2).count, 0) << "an element that is no object is a sample of defaults";
}

TEST_F(PointLocationJson, MembersOfAnotherTypeReadAsDefaults)
{
    const RKPointLocation point =
        read(R"({"_id":1,"depth":2.5,"dataType":"3","insertCount":1.5,"lastCount":null,
        "lastDate":5,"entity":{},"data":[{"count":1.5,"time":7,"value":"1","timeFlag":1}]})");
    EXPECT_TRUE(point.id.isEmpty());
    EXPECT_TRUE(point.depth.isEmpty()) << "a numeric depth is no text";
    EXPECT_EQ(point.dataType + point.insertCount + point.lastCount, 0);
    EXPECT_FALSE(point.lastDate.isValid());
    EXPECT_TRUE(point.links.isEmpty());
    ASSERT_EQ(point.data.size(), 1);
    EXPECT_EQ(point.data.first().count, 0) << "a fractional count reads as 0";
    EXPECT_EQ(point.data.first().value, 0.0);
    EXPECT_FALSE(point.data.first().time.isValid());
    EXPECT_TRUE(point.data.first().timeFlag.isEmpty());
}

TEST_F(PointLocationJson, AFreshRecordIsZero)
{
    const RKPointLocation point;
    EXPECT_EQ(point.insertCount, 0);
    EXPECT_EQ(point.lastCount, 0);
    EXPECT_EQ(point.dataType, 0);
    EXPECT_EQ(point.initialValue, 0.0);
}

TEST_F(PointLocationJson, ASampleSurvivesTheRoundTrip)
{
    const RKPointLocationData sample{11738, eightOClock.addMSecs(250), -0.1, "B"_q};
    RKPointLocationData back;
    rk::sampleFromJson(QCborMap::fromJsonObject(rk::sampleToJson(sample)), back);
    EXPECT_EQ(back.count, sample.count);
    EXPECT_EQ(back.time, sample.time);
    EXPECT_EQ(back.value, sample.value);
    EXPECT_EQ(back.timeFlag, sample.timeFlag);
}

TEST_F(PointLocationJson, SamplesAreReadAsQJsonObjectReadsThem)
{
    for (const char* text : {"0",
                             "-0.0",
                             "12",
                             "12.0",
                             "12.5",
                             "1e2",
                             "-7",
                             "2147483647",
                             "2147483648",
                             "-2147483649",
                             "4294967297",
                             "9007199254740993",
                             "9223372036854775808",
                             "1e300",
                             "null",
                             "true",
                             "false",
                             R"("12")",
                             R"("")",
                             R"("\u00fc")",
                             R"("\ud83d\ude00")",
                             R"("2015-12-21T08:00:00.000Z")",
                             "[]",
                             "[3]",
                             "{}",
                             R"({"count":3})"}) {
        const QJsonObject object =
            jsonObject(QStringLiteral(R"({"count":%1,"time":%1,"value":%1,"timeFlag":%1})")
                           .arg(QString::fromUtf8(text))
                           .toUtf8()
                           .constData());
        RKPointLocationData sample;
        rk::sampleFromJson(QCborMap::fromJsonObject(object), sample);
        EXPECT_EQ(sample.count, object.value("count"_q).toInt(0)) << text;
        EXPECT_EQ(sample.value, object.value("value"_q).toDouble(0.0)) << text;
        EXPECT_EQ(sample.timeFlag, object.value("timeFlag"_q).toString()) << text;
        EXPECT_EQ(sample.time.isValid(), object.value("time"_q).toString().startsWith("2015"_q)) << text;
    }
}

TEST_F(PointLocationJson, MembersOfOtherNamesAreNotTakenForThoseOfASample)
{
    const RKPointLocation point = read(
        R"({"data":[{"Count":1,"coun":1,"counts":1,"tim":"2015-12-21T08:00:00Z","times":"2015-12-21T08:00:00Z",
        "valu":1,"values":1,"timeflag":"A","timeFlags":"A","":1},{"\u0063ount":2,"value":0.5,"zzz":9,"aaa":8}]})");
    ASSERT_EQ(point.data.size(), 2);
    EXPECT_EQ(point.data.at(0).count, 0);
    EXPECT_TRUE(point.data.at(0).time.isNull());
    EXPECT_EQ(point.data.at(0).value, 0.0);
    EXPECT_TRUE(point.data.at(0).timeFlag.isEmpty());
    EXPECT_EQ(point.data.at(1).count, 2);
    EXPECT_EQ(point.data.at(1).value, 0.5);
}

TEST_F(PointLocationJson, EverySampleHasItsOwnTimeFlag)
{
    RKPointLocation point = read(
        R"({"data":[{"timeFlag":"A"},{"timeFlag":"A"},{"timeFlag":"B"},{},{"timeFlag":7},{"timeFlag":""},
        {"timeFlag":"A"},5,{"timeFlag":"A"}]})");
    QStringList flags;
    for (const RKPointLocationData& sample : qAsConst(point.data)) {
        flags.append(sample.timeFlag);
    }
    EXPECT_EQ(flags, QStringList({"A"_q, "A"_q, "B"_q, {}, {}, {}, "A"_q, {}, "A"_q}));
    point.data[0].timeFlag.append("2"_q);
    EXPECT_EQ(point.data.at(1).timeFlag, "A"_q);
}

TEST(ChartEntryJson, ReadsItsMembers)
{
    const RKPointLocationChartData entry =
        rk::chartEntryFromJson(jsonObject(R"({"_id":"w1","name":"VH-W1","depth":"110","count":96,"value":0.25,
                       "time":"2015-12-21T08:00:00.000Z","entity":[{"type":"model","rId":"m1"}]})"));
    EXPECT_EQ(entry.id, "w1"_q);
    EXPECT_EQ(entry.name, "VH-W1"_q);
    EXPECT_EQ(entry.depth, "110"_q);
    EXPECT_EQ(entry.count, 96);
    EXPECT_EQ(entry.value, 0.25);
    EXPECT_EQ(entry.time, eightOClock);
    EXPECT_EQ(entry.entity, (Links{{"model"_q, {"m1"_q}}}));
}

TEST(ChartEntryJson, ReadsDefaultsForWhatIsMissingOrOfAnotherType)
{
    for (const char* text :
         {"{}", R"({"_id":1,"name":2,"depth":2.5,"count":1.5,"value":"1","time":1,"entity":1})"}) {
        const RKPointLocationChartData entry = rk::chartEntryFromJson(jsonObject(text));
        EXPECT_TRUE(entry.id.isEmpty() && entry.name.isEmpty() && entry.depth.isEmpty()) << text;
        EXPECT_EQ(entry.count, 0) << text;
        EXPECT_EQ(entry.value, 0.0) << text;
        EXPECT_FALSE(entry.time.isValid()) << text;
        EXPECT_TRUE(entry.entity.isEmpty()) << text;
    }
}

} // namespace
