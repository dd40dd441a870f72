#include "SampleCondition.h"

#include "Failure.h"
#include "Text.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

RKPointLocationData sample(const char* time, qint32 count, double value, const char* flag = "")
{
    return {count, QDateTime::fromString(QString::fromUtf8(time), Qt::ISODate), value,
            QString::fromUtf8(flag)};
}

std::string whereOf(const SampleConditionOptions& options)
{
    return QJsonDocument(SampleCondition(options, QTimeZone::utc).where())
        .toJson(QJsonDocument::Compact)
        .toStdString();
}

} // namespace

TEST(SampleCondition, MustRestrictSomething)
{
    EXPECT_THROW(SampleCondition(SampleConditionOptions{}, QTimeZone::utc), Failure);
    SampleConditionOptions wrong;
    wrong.time = "soon"_q;
    EXPECT_THROW(SampleCondition(wrong, QTimeZone::utc), Failure);
}

TEST(SampleCondition, AllPartsMustHold)
{
    SampleConditionOptions options;
    options.period = {"2026-03-01T00:00:00Z"_q, "2026-03-02T00:00:00Z"_q};
    options.above = 1.0;
    options.below = 2.0;
    options.flag = "A"_q;
    const SampleCondition condition(options, QTimeZone::utc);
    EXPECT_TRUE(condition.isMetBy(sample("2026-03-02T23:59:59Z", 1, 1.5, "A")));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-03T00:00:00Z", 1, 1.5, "A")));
    EXPECT_FALSE(condition.isMetBy(sample("2026-02-28T23:59:59Z", 1, 1.5, "A")));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-02T00:00:00Z", 1, 1.0, "A")));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-02T00:00:00Z", 1, 2.0, "A")));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-02T00:00:00Z", 1, 1.5)));
    EXPECT_EQ(whereOf(options),
              R"({"time":{"$gte":"2026-03-01T00:00:00.000Z","$lt":"2026-03-03T00:00:00.000Z"},)"
              R"("timeFlag":"A","value":{"$gt":1,"$lt":2}})");
}

TEST(SampleCondition, TellsSingleSamples)
{
    SampleConditionOptions options;
    options.time = "2026-03-01T08:00:00+01:00"_q;
    options.count = 7;
    options.value = 0.0;
    const SampleCondition condition(options, QTimeZone::utc);
    EXPECT_TRUE(condition.isMetBy(sample("2026-03-01T07:00:00Z", 7, 0.0)));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-01T08:00:00Z", 7, 0.0)));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-01T07:00:00Z", 8, 0.0)));
    EXPECT_FALSE(condition.isMetBy(sample("2026-03-01T07:00:00Z", 7, 0.1)));
    EXPECT_EQ(whereOf(options), R"({"count":7,"time":"2026-03-01T08:00:00.000+01:00","value":0})");
}
