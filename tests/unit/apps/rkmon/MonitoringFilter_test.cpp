#include "MonitoringFilter.h"

#include "Failure.h"

#include <QRegularExpression>
#include <RKPub.h>

#include <gtest/gtest.h>

namespace {

QTimeZone utc()
{
    return QTimeZone::utc();
}

// Whether it is refused as bad input, before anything is sent.
bool isRefused(const MonitoringFilter& filter)
{
    try {
        conditionOf(filter, utc);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return true;
    }
    return false;
}

MonitoringFilter named(const char* pattern)
{
    MonitoringFilter filter;
    filter.name = QString::fromUtf8(pattern);
    return filter;
}

MonitoringFilter between(const char* since, const char* until)
{
    MonitoringFilter filter;
    filter.period.since = QString::fromUtf8(since);
    filter.period.until = QString::fromUtf8(until);
    return filter;
}

// Whether the service, which matches a pattern anywhere and ignores case, would find `text`.
bool finds(const QString& pattern, const char* text)
{
    const QRegularExpression expression(pattern, QRegularExpression::CaseInsensitiveOption);
    EXPECT_TRUE(expression.isValid()) << qPrintable(pattern);
    return expression.match(QString::fromUtf8(text)).hasMatch();
}

} // namespace

TEST(MonitoringFilter, NothingGivenRestrictsNothing)
{
    const RKMonitoringCondition condition = conditionOf({}, utc);
    EXPECT_TRUE(condition.isAllTime);
    EXPECT_TRUE(condition.name.isEmpty());
    EXPECT_TRUE(condition.exactName.isEmpty());
    EXPECT_TRUE(condition.modelId.isEmpty());
}

TEST(MonitoringFilter, PatternsPassAsTheyAre)
{
    EXPECT_EQ(conditionOf(named("^LS-[ab]$"), utc).name, QStringLiteral("^LS-[ab]$"));
    EXPECT_EQ(conditionOf(named("50 % done"), utc).name, QStringLiteral("50 % done"));
}

TEST(MonitoringFilter, PatternThatLooksLikeAPlaceMarkerKeepsItsMeaning)
{
    struct Row
    {
        const char* pattern;
        const char* found;
        const char* notFound;
    };
    const std::vector<Row> rows{{"5%1", "load 5%1", "load 5\\x251"},
                                {"5\\%1", "load 5%1", "load 51"},
                                {"\\\\%1", "a\\%1", "a%1"},
                                {"[%1]", "1", "2"},
                                {"\\Q.%1\\E.", ".%1x", ".%1"},
                                {"\\Q\\%1", "\\%1", "%1"},
                                {"%L1", "%l1", "L1"},
                                {"%٣", "%٣", "٣"}};
    for (const Row& row : rows) {
        const QString pattern = conditionOf(named(row.pattern), utc).name;
        EXPECT_FALSE(pattern.contains(QLatin1Char('%'))) << row.pattern;
        EXPECT_TRUE(finds(pattern, row.found)) << row.pattern << " became " << qPrintable(pattern);
        EXPECT_FALSE(finds(pattern, row.notFound)) << row.pattern << " became " << qPrintable(pattern);
    }
}

TEST(MonitoringFilter, ExactNamePassesAsItIs)
{
    MonitoringFilter filter;
    filter.exactName = QString::fromUtf8("a.b (边坡) 100 %");
    const RKMonitoringCondition condition = conditionOf(filter, utc);
    EXPECT_EQ(condition.exactName, filter.exactName);
    EXPECT_TRUE(condition.name.isEmpty());
}

TEST(MonitoringFilter, ExactNameThatLooksLikeAPlaceMarkerIsStillExact)
{
    MonitoringFilter filter;
    filter.exactName = QStringLiteral("Pit 5%1 (a.b\\c)");
    const RKMonitoringCondition condition = conditionOf(filter, utc);
    EXPECT_TRUE(condition.exactName.isEmpty());
    EXPECT_FALSE(condition.name.contains(QLatin1Char('%')));
    EXPECT_TRUE(finds(condition.name, "Pit 5%1 (a.b\\c)"));
    EXPECT_FALSE(finds(condition.name, "pit 5%1 (a.b\\c)"));
    EXPECT_FALSE(finds(condition.name, "Pit 5%1 (aXb\\c)"));
    EXPECT_FALSE(finds(condition.name, "Pit 5%1 (a.b\\c)\n"));
    EXPECT_FALSE(finds(condition.name, "My Pit 5%1 (a.b\\c)"));
}

TEST(MonitoringFilter, ModelThatLooksLikeAPlaceMarkerIsRefused)
{
    MonitoringFilter filter;
    filter.model = QStringLiteral("m%2");
    EXPECT_TRUE(isRefused(filter));
    filter.model = QStringLiteral("m2");
    EXPECT_EQ(conditionOf(filter, utc).modelId, QStringLiteral("m2"));
}

TEST(MonitoringFilter, PeriodIsRestricted)
{
    const RKMonitoringCondition condition = conditionOf(between("2026-03-01T08:00:00+01:00", ""), utc);
    EXPECT_FALSE(condition.isAllTime);
    EXPECT_EQ(condition.startTime, QDateTime(QDate(2026, 3, 1), QTime(7, 0), Qt::UTC));
    EXPECT_TRUE(isRefused(between("yesterday", "")));
}
