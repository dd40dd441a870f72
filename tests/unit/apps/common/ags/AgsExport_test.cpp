#include "ags/AgsExport.h"

#include "Chance.h"
#include "Failure.h"
#include "ags/AgsGroups.h"
#include "ags/SiteFile.h"

#include <gmock/gmock.h>

#include <cmath>

// AGS files that are written: what stands in them, and that they read as what was written.

namespace {

using monitorservice::test::Chance;
using testing::HasSubstr;

RKPointLocation pointOf(const QString& name, const QString& depth, const QList<RKPointLocationData>& samples)
{
    RKPointLocation point;
    point.name = name;
    point.depth = depth;
    point.data = samples;
    return point;
}

RKPointLocationData sampleAt(const QString& time, qint32 count, double value, const QString& flag = {})
{
    RKPointLocationData sample;
    sample.time = QDateTime::fromString(time, Qt::ISODateWithMs);
    sample.count = count;
    sample.value = value;
    sample.timeFlag = flag;
    return sample;
}

ags::Monitored monitoredOf(const QList<ags::MeasuredSeries>& series)
{
    return {"1842"_q, "Canal Street"_q, "rkmon"_q, "Pit"_q, QDate(2024, 4, 2), series};
}

std::string refusalOf(const ags::Monitored& monitored)
{
    try {
        ags::fileOf(monitored);
    } catch (const Failure& failure) {
        return failure.message().toStdString();
    }
    return "none";
}

// "sub-category|name|depth|initial value|time|count|value|flag" with all digits.
QStringList described(const QString& subCategory, const QString& name, const QString& depth,
                      const std::optional<double>& initialValue, const QList<RKPointLocationData>& samples)
{
    const auto exact = [](double number) {
        return QString::number(number, 'g', 17);
    };
    QStringList rows;
    for (const RKPointLocationData& sample : samples) {
        rows.append(QStringList{subCategory, name, depth, initialValue ? exact(*initialValue) : "none"_q,
                                QString::number(sample.time.toMSecsSinceEpoch()),
                                QString::number(sample.count), exact(sample.value), sample.timeFlag}
                        .join(u'|'));
    }
    return rows;
}

QStringList described(const MeasuredFile& file)
{
    QStringList rows;
    for (const MeasuredPoint& point : file.points) {
        QList<RKPointLocationData> samples;
        for (const Reading& reading : point.readings) {
            samples.append(reading.sample);
        }
        rows += described(point.subCategory, point.name, point.depth, point.initialValue, samples);
    }
    rows.sort();
    return rows;
}

// Points with names, depths and samples that nobody would choose.
QList<ags::MeasuredSeries> randomSeries(Chance& chance)
{
    const std::vector<QString> names{"P1"_q,    "P,1"_q,          "the \"old\" one"_q,
                                     "\"\""_q,  "DATA"_q,         "\u6d4b\u70b9 1"_q,
                                     "a|b+c"_q, "M\u00fcller's"_q};
    const std::vector<QString> depths{QString(), "0.5"_q, "12"_q, "-3.125"_q};
    const std::vector<QString> flags{QString(), "A"_q, "q\"1\", x"_q};
    QList<ags::MeasuredSeries> all;
    for (const QString& subCategory : {"Settlement"_q, "Water, level"_q}) {
        for (const QString& name : names) {
            QList<RKPointLocationData> samples;
            for (std::size_t count = chance.below(5); count > 0; --count) {
                RKPointLocationData sample;
                sample.time = QDateTime::fromMSecsSinceEpoch(
                    1700000000000 + static_cast<qint64>(chance.below(1000000)) * 86399 + 7, Qt::UTC);
                sample.count = static_cast<qint32>(count);
                sample.value = std::ldexp(static_cast<double>(chance.below(1U << 31)) - 1e9,
                                          static_cast<int>(chance.below(80)) - 60) /
                               3;
                sample.timeFlag = chance.of(flags);
                samples.append(sample);
            }
            const std::optional<double> initialValue =
                chance.once(3) ? std::nullopt : std::make_optional(static_cast<double>(chance.below(9)) / 7);
            all.append(
                {pointOf(name, chance.of(depths), samples), subCategory, QString(), "mm"_q, initialValue});
        }
    }
    return all;
}

} // namespace

TEST(AgsExport, HasAllGroupsThatAFileNeeds)
{
    const QByteArray file = ags::fileOf(
        monitoredOf({{pointOf("BH1"_q, "2.5"_q, {sampleAt("2024-04-01T09:00:00+01:00"_q, 3, -0.125, "A"_q)}),
                      "Water level"_q, "WL"_q, "m"_q, 7.25}}));
    EXPECT_TRUE(file.startsWith("\"GROUP\",\"PROJ\"\r\n\"HEADING\",\"PROJ_ID\",\"PROJ_NAME\"\r\n"
                                "\"UNIT\",\"\",\"\"\r\n\"TYPE\",\"ID\",\"X\"\r\n"
                                "\"DATA\",\"1842\",\"Canal Street\"\r\n\r\n\"GROUP\",\"TRAN\"\r\n"))
        << file.toStdString();
    EXPECT_THAT(file.toStdString(),
                HasSubstr("\"DATA\",\"1\",\"2024-04-02\",\"rkmon\",\"Export\",\"Readings of "
                          "Pit\",\"4.1\",\"Canal Street\",\"|\",\"+\"\r\n"));
    EXPECT_THAT(file.toStdString(), HasSubstr("\"DATA\",\"MOND_TYPE\",\"WL\",\"Water level\"\r\n"));
    EXPECT_TRUE(
        file.endsWith("\"DATA\",\"BH1\",\"BH1\",\"2.5\",\"2024-04-01T09:00:00.000+01:00\",\"WL\",\"3\","
                      "\"-0.125\",\"m\",\"3\",\"A\",\"7.25\"\r\n"))
        << file.toStdString();
    Problems problems;
    QStringList names;
    for (const ags::Group& group : ags::readGroups(file, problems).groups) {
        names.append(group.name);
    }
    EXPECT_EQ(names.join(u' '), "PROJ TRAN UNIT TYPE ABBR DICT LOCA MONG MOND"_q);
    EXPECT_TRUE(problems.isEmpty());
    EXPECT_EQ(file.count('\n'), file.count("\r\n"));
}

TEST(AgsExport, DefinesEveryUnitTypeAndHeading)
{
    const QByteArray file =
        ags::fileOf(monitoredOf({{pointOf("BH1"_q, "2.5"_q, {sampleAt("2024-04-01T08:00:00Z"_q, 1, 1)}),
                                  "Water level"_q,
                                  {},
                                  "kPa"_q,
                                  {}},
                                 {pointOf("BH2"_q, "10"_q, {}), "Settlement"_q, {}, {}, {}}}));
    Problems problems;
    for (const ags::Group& group : ags::readGroups(file, problems).groups) {
        for (const QString& unit : group.units + QStringList{"kPa"_q}) {
            EXPECT_TRUE(unit.isEmpty() || file.contains("\"DATA\",\"" + unit.toUtf8() + "\",\""))
                << unit.toStdString();
        }
        for (const QString& type : group.types) {
            EXPECT_TRUE(file.contains("\"DATA\",\"" + type.toUtf8() + "\",\"")) << type.toStdString();
        }
    }
    for (const char* own : {"MOND_SCNT", "MOND_TFLG", "MOND_IVAL"}) {
        EXPECT_TRUE(file.contains(QByteArray("\"DATA\",\"HEADING\",\"MOND\",\"") + own)) << own;
    }
    EXPECT_TRUE(file.contains("\"DATA\",\"BH2\",\"BH2\",\"10.0\"")) << "all distances have as many decimals";
}

TEST(AgsExport, AnAliasThatMeansTwoThingsIsNotAType)
{
    const QByteArray file = ags::fileOf(monitoredOf(
        {{pointOf("P"_q, {}, {sampleAt("2024-04-01T08:00:00Z"_q, 1, 1)}), "Tilt+x"_q, "S"_q, {}, {}},
         {pointOf("P"_q, {}, {sampleAt("2024-04-01T08:00:00Z"_q, 1, 2)}), "S"_q, "S"_q, {}, {}}}));
    EXPECT_EQ(described(readAnyFile("a.ags"_q, file, {})).join(u'\n').section(u'|', 0, 0), "S"_q);
    EXPECT_TRUE(file.contains("\"MOND_TYPE\",\"Tilt+x\",\"Tilt+x\""));
    EXPECT_TRUE(file.contains("\"|\",\"&\"\r\n")) << "codes are not joined by what stands in one";
    EXPECT_EQ(file.count("\"DATA\",\"P\",\"P\",\"\"\r\n"), 1) << "one installation";
}

TEST(AgsExport, WhatWouldComeBackAsAnotherTextIsRefused)
{
    EXPECT_EQ(refusalOf(monitoredOf({{pointOf("P 1 "_q, {}, {}), "S"_q, {}, {}, {}}})),
              "\"P 1 \" cannot stand in an AGS file: it has blanks at its ends, or a control character");
    EXPECT_NE(refusalOf(monitoredOf({{pointOf("P\n1"_q, {}, {}), "S"_q, {}, {}, {}}})), "none");
    EXPECT_EQ(refusalOf(monitoredOf({{pointOf("P\"1"_q, {}, {}), "S"_q, {}, {}, {}}})), "none");
}

TEST(AgsExport, AHeadingOfOthersIsNotTakenForOurs)
{
    QByteArray file = ags::fileOf(
        monitoredOf({{pointOf("P"_q, {}, {sampleAt("2024-04-01T08:00:00Z"_q, 3, 1)}), "S"_q, {}, {}, {}}}));
    file.replace("Count of the sample", "Samples counted");
    const MeasuredFile read = readAnyFile("a.ags"_q, file, {});
    EXPECT_EQ(read.ignoredColumns, QStringList{"MOND_SCNT"_q});
    EXPECT_EQ(read.points.first().readings.first().sample.count, 1);
}

TEST(AgsExport, WhatIsWrittenIsRead)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        Chance chance(seed);
        const QList<ags::MeasuredSeries> all = randomSeries(chance);
        QStringList expected;
        for (const ags::MeasuredSeries& series : all) {
            expected += described(series.subCategory, series.point.name, series.point.depth,
                                  series.initialValue, series.point.data);
        }
        expected.sort();
        const MeasuredFile file = readAnyFile("a.ags"_q, ags::fileOf(monitoredOf(all)), {});
        ASSERT_TRUE(file.problems.isEmpty())
            << "seed " << seed << ": " << file.problems.lines("a.ags"_q).join(u'\n').toStdString();
        ASSERT_EQ(described(file).join(u'\n').toStdString(), expected.join(u'\n').toStdString())
            << "seed " << seed;
    }
}
