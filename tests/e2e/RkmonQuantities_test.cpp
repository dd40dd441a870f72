#include "DeploymentWithoutExtensions.h"
#include "RkmonTest.h"
#include "SvgDrawing.h"
#include "Text.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <gmock/gmock.h>

// Points of one name in different sub-categories, their references, and the days of the project: what is
// easily mixed up.

namespace {

using testing::HasSubstr;

class RkmonQuantities : public RkmonTest
{
protected:
    RkmonQuantities()
    {
        settlement = subCategory("Settlement"_q, "SE"_q, "mm"_q);
        force = subCategory("Force"_q, "FO"_q, "kN"_q);
        created("Pit"_q);
        // P1 is measured for both; the service stores other values than anything in the program could
        // confuse.
        deliver("SE"_q, "P1,,2015-12-18T08:00:00-08:00,1,1.5\n"
                        "P1,,2015-12-19T08:00:00-08:00,1,2.5\n"
                        "P1,,2015-12-20T08:00:00-08:00,1,4.5\n"
                        "P2,,2015-12-20T08:00:00-08:00,1,7.5\n");
        deliver("FO"_q, "P1,,2015-12-18T20:00:00-08:00,1,500\n"
                        "P1,,2015-12-19T20:00:00-08:00,1,510\n"
                        "P1,,2015-12-20T20:00:00-08:00,1,520\n");
    }

    QString subCategory(const QString& name, const QString& alias, const QString& unit) const
    {
        return service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q,
                                "Slope"_q, "--name"_q, name, "--alias"_q, alias, "--unit"_q, unit});
    }

    void deliver(const QString& subCategory, const QByteArray& rows)
    {
        QFile file(inFolder("%1.csv"_q.arg(subCategory)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("name,depth,time,count,value\n" + rows);
        file.close();
        done({"point"_q, "import"_q, "--cell"_q, "Pit"_q, "--sub-category"_q, subCategory, file.fileName()});
    }

    QString inFolder(const QString& name) const { return QDir(rkmon.folder()).filePath(name); }

    Result done(const QStringList& arguments) const
    {
        const Result result = rkmon.run(arguments);
        EXPECT_EQ(result.code, 0) << arguments.join(QLatin1Char(' ')).toStdString() << ": "
                                  << result.messages.toStdString();
        return result;
    }

    // "sub-category name value" of each row.
    QStringList rows(const QStringList& arguments, const char* subCategory, const char* value) const
    {
        QStringList texts;
        for (const QJsonValue& row : done(arguments + QStringList{"--json"_q}).array()) {
            texts.append(
                "%1 %2 %3"_q.arg(row[QLatin1String(subCategory)].toString(), row["name"_q].toString())
                    .arg(row[QLatin1String(value)].toDouble()));
        }
        texts.sort();
        return texts;
    }

    // What a command writes, whatever the order of its points, which have other identifiers elsewhere.
    QStringList sortedLines(const QStringList& arguments) const
    {
        QStringList lines = done(arguments).output.split("\r\n"_q);
        lines.sort();
        return lines;
    }

    void checkSubCategoriesAreKeptApart()
    {
        const QStringList points{"point"_q, "list"_q, "--cell"_q, "Pit"_q};
        EXPECT_EQ(rows(points, "subCategoryName", "latestValue"),
                  (QStringList{"Force P1 520"_q, "Settlement P1 4.5"_q, "Settlement P2 7.5"_q}));
        EXPECT_EQ(rows(points + QStringList{"--sub-category"_q, "FO"_q}, "subCategoryName", "latestValue"),
                  QStringList{"Force P1 520"_q});
        EXPECT_EQ(rows(points + QStringList{"--sub-category"_q, settlement, "--name"_q, "P1"_q},
                       "subCategoryName", "latestValue"),
                  QStringList{"Settlement P1 4.5"_q});
        EXPECT_EQ(
            rows(points + QStringList{"--samples"_q, "--sub-category"_q, "Force"_q}, "subCategory", "value"),
            (QStringList{"Force P1 500"_q, "Force P1 510"_q, "Force P1 520"_q}));

        const QStringList days{"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P1"_q};
        EXPECT_EQ(rows(days, "subCategoryName", "value").size(), 6);
        EXPECT_EQ(rows(days + QStringList{"--sub-category"_q, "SE"_q}, "subCategoryName", "value"),
                  (QStringList{"Settlement P1 1.5"_q, "Settlement P1 2.5"_q, "Settlement P1 4.5"_q}));

        const QJsonObject latest = done({"point"_q, "latest"_q, "--cell"_q, "Pit"_q, "--sub-category"_q,
                                         "SE"_q, "--name"_q, "P1"_q, "--json"_q})
                                       .object();
        EXPECT_EQ(latest["latestValue"_q].toDouble(), 4.5);
        EXPECT_EQ(latest["subCategoryName"_q].toString(), "Settlement"_q);
    }

    // A chart of P1: each quantity has a panel of its own, and its curve goes through its values alone.
    void checkQuantitiesHaveAxesOfTheirOwn(const QStringList& labels)
    {
        const QString svg = inFolder("a.svg"_q);
        done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P1"_q, "--plot"_q, svg});
        const SvgDrawing drawing = readSvg(svg);
        for (const QString& label : labels) {
            EXPECT_EQ(drawing.allTexts().count(label), 1) << label.toStdString();
        }
        QVector<SvgDrawing::Line> curves;
        for (const SvgDrawing::Line& line : drawing.lines) {
            if (line.points.size() == 3) {
                curves.append(line);
            }
        }
        ASSERT_EQ(curves.size(), 2);
        const auto rises = [](const SvgDrawing::Line& curve) {
            const double first = curve.points[0].y() - curve.points[1].y();
            return (curve.points[1].y() - curve.points[2].y()) / first;
        };
        EXPECT_NEAR(rises(curves[0]), 1.0, 0.01);                    // 500, 510, 520
        EXPECT_NEAR(rises(curves[1]), 2.0, 0.01);                    // 1.5, 2.5, 4.5
        EXPECT_LT(curves[0].points[0].y(), curves[1].points[2].y()); // one above the other
    }

    QString settlement;
    QString force;
};

} // namespace

TEST_F(RkmonQuantities, AreKeptApartEverywhere)
{
    checkSubCategoriesAreKeptApart();
    checkQuantitiesHaveAxesOfTheirOwn({"Force (kN)"_q, "Settlement (mm)"_q});
    EXPECT_EQ(rkmon.run({"point"_q, "list"_q, "--cell"_q, "Pit"_q, "--sub-category"_q, "XX"_q}).code, 4);
}

TEST_F(RkmonQuantities, AreKeptApartWhereTheServiceTellsNothing)
{
    const DeploymentWithoutExtensions deployment{service().baseAddress()};
    rkmon.configure(deployment.baseAddress(), project, editor.text);
    checkSubCategoriesAreKeptApart();
    checkQuantitiesHaveAxesOfTheirOwn({"Force"_q, "Settlement"_q}); // units are not told
}

TEST_F(RkmonQuantities, AreDrawnOneByOneInTheTerminal)
{
    const QString drawn =
        done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P1"_q, "--draw"_q}).output;
    const QStringList lines = drawn.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 7) << drawn.toStdString();
    EXPECT_EQ(lines[1], "Force (kN):"_q);
    EXPECT_THAT(lines[2].toStdString(), HasSubstr("500"));
    EXPECT_EQ(lines[3], "Settlement (mm):"_q);
    EXPECT_THAT(lines[4].toStdString(), HasSubstr("1.5"));
    EXPECT_THAT(lines[5].toStdString(), HasSubstr("2015-12-18"));
}

TEST_F(RkmonQuantities, AnExportGivesTheSameDataInAnEmptyProject)
{
    // References of every kind: an initial value with a fraction, 0, and none.
    deliver("SE"_q, "P3,2.5,2015-12-18T08:00:00-08:00,1,10.5\nP3,2.5,2015-12-18T09:00:00+01:00,2,9.5\n"
                    "P4,,2015-12-18T08:00:00-08:00,1,0.25\nP5,,2015-12-18T08:00:00-08:00,1,3\n");
    done({"point"_q, "reference"_q, "P4"_q, "--cell"_q, "Pit"_q, "--set"_q, "0"_q, "--yes"_q});
    done({"point"_q, "reference"_q, "P5"_q, "--cell"_q, "Pit"_q, "--clear"_q, "--yes"_q});
    deliver("SE"_q, "P5,,2015-12-17T08:00:00-08:00,1,2.75\n");
    const QStringList exported{"point"_q, "list"_q, "--cell"_q, "Pit"_q, "--samples"_q, "--csv"_q};
    const QStringList statistics{"stats"_q,
                                 "normal"_q,
                                 "--cell"_q,
                                 "Pit"_q,
                                 "--csv"_q,
                                 "--columns"_q,
                                 "day,subCategoryName,name,depth,value,totalVar,count,time"_q};
    const QStringList samples = sortedLines(exported);
    const QStringList days = sortedLines(statistics);
    QFile file(inFolder("export.csv"_q));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(done(exported).output.toUtf8());
    file.close();
    EXPECT_TRUE(samples.contains("Settlement,P4,,2015-12-18T08:00:00.000-08:00,1,0.25,,0"_q));
    EXPECT_TRUE(samples.contains("Settlement,P5,,2015-12-18T08:00:00.000-08:00,1,3,,"_q));

    project = service().createProject("Another site"_q);
    subCategory("Settlement"_q, "SE"_q, "mm"_q);
    subCategory("Force"_q, "FO"_q, "kN"_q);
    actAs(service().createToken("Ben"_q, project, "editor"_q));
    created("Pit"_q);
    const Result imported = done({"point"_q, "import"_q, "--cell"_q, "Pit"_q, file.fileName(), "--json"_q});
    EXPECT_EQ(imported.messages, QString());
    EXPECT_EQ(imported.object()["samples"_q].toInt(), 12);
    EXPECT_EQ(imported.object()["files"_q].toInt(), 1);
    EXPECT_EQ(sortedLines(exported), samples);
    EXPECT_EQ(sortedLines(statistics), days);
    // And it changes nothing when it comes again.
    done({"point"_q, "import"_q, "--cell"_q, "Pit"_q, file.fileName()});
    EXPECT_EQ(sortedLines(exported), samples);
    EXPECT_EQ(sortedLines(statistics), days);
}

TEST_F(RkmonQuantities, OfSeveralMonitoringsShareAnAxis)
{
    created("Pit 2"_q);
    QFile file(inFolder("second.csv"_q));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("name,depth,time,count,value\nP1,,2015-12-18T08:00:00-08:00,1,9.5\nP1,,2015-12-19T08:00:00-08:"
               "00,1,9\n"
               "P1,,2015-12-20T08:00:00-08:00,1,8\n");
    file.close();
    done({"point"_q, "import"_q, "--cell"_q, "Pit 2"_q, "--sub-category"_q, "SE"_q, file.fileName()});
    const QStringList both{"stats"_q, "normal"_q,         "--cell"_q, "Pit"_q,    "--cell"_q,
                           "Pit 2"_q, "--sub-category"_q, "SE"_q,     "--name"_q, "P1"_q};
    const QJsonArray days = done(both + QStringList{"--json"_q}).array();
    ASSERT_EQ(days.size(), 6);
    EXPECT_EQ(days[0]["cellName"_q].toString(), "Pit"_q);
    EXPECT_EQ(days[5]["cellName"_q].toString(), "Pit 2"_q);
    EXPECT_EQ(days[5]["totalVar"_q].toDouble(), -1.5);
    const QString svg = inFolder("a.svg"_q);
    done(both + QStringList{"--plot"_q, svg});
    const QStringList texts = readSvg(svg).allTexts();
    EXPECT_TRUE(texts.contains("Pit: P1"_q));
    EXPECT_TRUE(texts.contains("Pit 2: P1"_q));
    EXPECT_EQ(texts.count("Settlement (mm)"_q), 1);
    EXPECT_EQ(rkmon.run({"stats"_q, "depth"_q, "--cell"_q, "Pit"_q, "--cell"_q, "Pit 2"_q}).code, 2);
}

TEST_F(RkmonQuantities, TooManyCurvesAreRefusedUnlessTheTopIsWanted)
{
    QByteArray rows;
    for (int i = 1; i <= 31; ++i) {
        const QByteArray name = "Q" + QByteArray::number(i);
        rows += name + ",,2015-12-18T08:00:00-08:00,1,0\n" + name + ",,2015-12-19T08:00:00-08:00,1," +
                QByteArray::number(i) + "\n";
    }
    deliver("SE"_q, rows);
    const QStringList plot{"stats"_q,          "normal"_q, "--cell"_q, "Pit"_q,
                           "--sub-category"_q, "SE"_q,     "--plot"_q, inFolder("a.svg"_q)};
    const Result refused = rkmon.run(plot);
    EXPECT_EQ(refused.code, 2);
    EXPECT_THAT(refused.messages.toStdString(),
                HasSubstr("33 curves of \"Settlement\" are too many for one chart"));
    const Result top = done(plot + QStringList{"--top"_q, "2"_q});
    EXPECT_THAT(top.messages.toStdString(), HasSubstr("left out the 31 curves that changed less"));
    const QStringList texts = readSvg(inFolder("a.svg"_q)).allTexts();
    EXPECT_TRUE(texts.contains("Q30"_q) && texts.contains("Q31"_q) && !texts.contains("Q29"_q));
}

TEST_F(RkmonQuantities, ProfilesAreChangesSinceABaseline)
{
    deliver("SE"_q, "I1,1,2015-12-18T08:00:00-08:00,1,1\nI1,2,2015-12-18T08:00:00-08:00,1,1\n"
                    "I1,1,2015-12-20T08:00:00-08:00,1,4\nI1,2,2015-12-20T08:00:00-08:00,1,3\n"
                    "I1,1,2015-12-21T08:00:00-08:00,1,9\nI1,2,2015-12-21T08:00:00-08:00,1,7\n");
    done({"group"_q, "create"_q, "--cell"_q, "Pit"_q, "--sub-category"_q, "SE"_q, "--name"_q, "Tube"_q,
          "--point"_q, "I1"_q, "--total-limit"_q, "5"_q});
    const QString svg = inFolder("a.svg"_q);
    const QStringList depth{"stats"_q, "depth"_q, "--cell"_q, "Pit"_q, "--name"_q, "I1"_q, "--plot"_q, svg};
    const auto textsOf = [&](const QStringList& more) {
        done(depth + more);
        return readSvg(svg).allTexts();
    };
    const QStringList total =
        textsOf({"--values"_q, "cumulative"_q, "--level"_q, "1.5"_q, "--depth-unit"_q, "m"_q});
    for (const QString& text : {"Settlement, total variation (mm)"_q, "limit +5"_q, "dig level 1.5 m"_q,
                                "Depth (m)"_q, "2015-12-18"_q, "2015-12-21"_q}) {
        EXPECT_TRUE(total.contains(text)) << text.toStdString();
    }
    // The day before the first is not shown, and none is left out of sight by the period.
    const QStringList last{"--since"_q, "2015-12-21"_q};
    const QStringList previous =
        textsOf(last + QStringList{"--values"_q, "cumulative"_q, "--baseline"_q, "previous"_q});
    EXPECT_TRUE(previous.contains("Settlement, change since the day before (mm)"_q));
    EXPECT_FALSE(previous.contains("limit +5"_q));
    EXPECT_TRUE(textsOf(last + QStringList{"--values"_q, "incremental"_q, "--baseline"_q, "2015-12-20"_q})
                    .contains("Settlement, change since 2015-12-20 per interval (mm)"_q));

    const Result unmeasured =
        rkmon.run(depth + QStringList{"--values"_q, "cumulative"_q, "--baseline"_q, "2015-12-19"_q});
    EXPECT_EQ(unmeasured.code, 4);
    EXPECT_THAT(
        unmeasured.messages.toStdString(),
        HasSubstr(
            "nothing was measured on 2015-12-19; the first day is 2015-12-18, the last one 2015-12-21"));
    EXPECT_EQ(rkmon.run(depth + QStringList{"--baseline"_q, "first"_q}).code, 2);
    EXPECT_EQ(
        rkmon.run(depth + QStringList{"--values"_q, "cumulative"_q, "--baseline"_q, "yesterday"_q}).code, 2);
    EXPECT_EQ(rkmon.run(depth + QStringList{"--size"_q, "10x10"_q}).code, 2);
}

TEST_F(RkmonQuantities, ChartsSpeakChinese)
{
    const QString svg = inFolder("a.svg"_q);
    done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P2"_q, "--language"_q, "zh"_q,
          "--values"_q, "cumulative"_q, "--title"_q, "基坑"_q, "--plot"_q, svg});
    // Each script of a text is written by itself.
    const QString texts = readSvg(svg).allTexts().join(QString());
    for (const QString& text : {"基坑"_q, "Settlement"_q, "累计变化量"_q, "日期"_q}) {
        EXPECT_TRUE(texts.contains(text)) << text.toStdString();
    }
}

TEST_F(RkmonQuantities, AreNeverMixedOverDepth)
{
    deliver("SE"_q, "I1,2.5,2015-12-20T08:00:00-08:00,1,1\nI1,5,2015-12-20T08:00:00-08:00,1,2\n");
    deliver("FO"_q, "I1,2.5,2015-12-20T08:00:00-08:00,1,100\nI1,5,2015-12-20T08:00:00-08:00,1,200\n");
    const QStringList depth{"stats"_q, "depth"_q, "--cell"_q, "Pit"_q, "--plot"_q, inFolder("a.svg"_q)};
    const Result refused = rkmon.run(depth);
    EXPECT_EQ(refused.code, 2);
    EXPECT_THAT(refused.messages.toStdString(),
                HasSubstr("shows one quantity; --sub-category chooses among Force, Settlement"));
    done(depth + QStringList{"--sub-category"_q, "FO"_q});
    EXPECT_TRUE(readSvg(inFolder("a.svg"_q)).allTexts().contains("Force (kN)"_q));
}

TEST_F(RkmonQuantities, VariationsCountFromTheReferenceOfTheService)
{
    // An initial value with a fraction, which the library reads as 0.
    QJsonObject point;
    for (const QJsonValue& row : done({"point"_q, "list"_q, "--cell"_q, "Pit"_q, "--json"_q}).array()) {
        if (row["name"_q] == "P2"_q) {
            point = row.toObject();
        }
    }
    EXPECT_EQ(point["reference"_q].toDouble(), 7.5);
    deliver("SE"_q, "P3,,2015-12-20T08:00:00-08:00,1,10.5\nP3,,2015-12-21T08:00:00-08:00,1,11.75\n");
    const QJsonArray days =
        done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P3"_q, "--json"_q}).array();
    ASSERT_EQ(days.size(), 2);
    EXPECT_EQ(days[1]["totalVar"_q].toDouble(), 1.25);

    done({"group"_q, "create"_q, "--cell"_q, "Pit"_q, "--sub-category"_q, "SE"_q, "--name"_q, "North"_q,
          "--point"_q, "P3"_q, "--total-limit"_q, "2"_q, "--daily-limit"_q, "0.5"_q});
    const QString svg = inFolder("a.svg"_q);
    const Result plotted =
        done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P3"_q, "--plot"_q, svg});
    EXPECT_EQ(plotted.messages, "rkmon: wrote %1\n"_q.arg(svg)); // nothing is guessed
    EXPECT_TRUE(readSvg(svg).allTexts().contains("limit +2"_q));
    done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P3"_q, "--values"_q, "daily"_q, "--plot"_q,
          svg});
    EXPECT_TRUE(readSvg(svg).allTexts().contains("limit +0.5"_q));
    EXPECT_TRUE(readSvg(svg).allTexts().contains("Settlement, daily variation (mm)"_q));
}

TEST_F(RkmonQuantities, ReferencesThatAreNotToldAreSaidToBeGuessed)
{
    done({"group"_q, "create"_q, "--cell"_q, "Pit"_q, "--sub-category"_q, "SE"_q, "--name"_q, "North"_q,
          "--point"_q, "P1"_q, "--total-limit"_q, "2"_q});
    const DeploymentWithoutExtensions deployment{service().baseAddress()};
    rkmon.configure(deployment.baseAddress(), project, editor.text);
    const QString svg = inFolder("a.svg"_q);
    const Result plotted = done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P1"_q,
                                 "--sub-category"_q, "SE"_q, "--plot"_q, svg});
    EXPECT_THAT(plotted.messages.toStdString(), HasSubstr("count from the first readings"));
    EXPECT_TRUE(readSvg(svg).allTexts().contains("Pit: P1 (variations count from the first readings)"_q));
}

TEST_F(RkmonQuantities, DaysAreThoseOfTheProject)
{
    // The project's days begin in Los Angeles: 08:00 of the 18th there is the 19th in Auckland.
    rkmon.setVariable("TZ"_q, "Pacific/Auckland"_q);
    const QStringList day{"--since"_q, "2015-12-18"_q, "--until"_q, "2015-12-18"_q};
    EXPECT_EQ(rows(QStringList{"point"_q, "list"_q, "--cell"_q, "Pit"_q, "--samples"_q} + day, "subCategory",
                   "value"),
              (QStringList{"Force P1 500"_q, "Settlement P1 1.5"_q}));
    EXPECT_EQ(rows(QStringList{"stats"_q, "normal"_q, "--cell"_q, "Pit"_q} + day, "subCategoryName", "value")
                  .size(),
              2);
    const QString table = done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P2"_q}).output;
    EXPECT_THAT(table.toStdString(), HasSubstr("2015-12-20 08:00:00 -08:00"));
    const QString svg = inFolder("a.svg"_q);
    done({"stats"_q, "normal"_q, "--cell"_q, "Pit"_q, "--name"_q, "P1"_q, "--plot"_q, svg});
    EXPECT_TRUE(readSvg(svg).allTexts().contains("Date (UTC-08:00)"_q));
}

TEST_F(RkmonQuantities, WhereTheZoneIsNotToldItIsSaidWhoseDaysTheyAre)
{
    const DeploymentWithoutExtensions deployment{service().baseAddress()};
    rkmon.configure(deployment.baseAddress(), project, editor.text);
    rkmon.setVariable("TZ"_q, "Pacific/Auckland"_q);
    const Result listed = done({"point"_q, "list"_q, "--cell"_q, "Pit"_q, "--samples"_q, "--csv"_q,
                                "--since"_q, "2015-12-19"_q, "--until"_q, "2015-12-19"_q});
    EXPECT_EQ(listed.messages,
              "rkmon: the service does not tell the project's time zone; days are those of this "
              "machine, Pacific/Auckland\n"_q);
    EXPECT_THAT(listed.output.toStdString(), HasSubstr("2015-12-18T08:00:00.000-08:00"));
}

TEST_F(RkmonQuantities, AnUnknownTimeZoneIsAnError)
{
    rkmon.setVariable("TZ"_q, "Mars/Phobos"_q);
    const Result result = rkmon.run({"point"_q, "list"_q, "--cell"_q, "Pit"_q});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages,
              "rkmon: TZ: \"Mars/Phobos\" is no time zone known on this machine; one is called like "
              "Europe/Vienna\n"_q);
}
