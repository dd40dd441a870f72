#include "RkmonTest.h"
#include "ScriptServer.h"
#include "Text.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMap>

#include <gmock/gmock.h>

#include <cmath>

// Readings go in by files and come out as points, statistics, data, groups and alarms.

namespace {

const QByteArray header = "name,depth,time,count,value\n";
const QByteArray noResource = R"({"message":"no such resource","status":404})";
const QString samples = QStringLiteral(RK_SAMPLES);

class RkmonImport : public RkmonTest
{
protected:
    RkmonImport()
    {
        moisture = createSubCategory("Slope"_q, "Soil moisture"_q, "SM"_q);
        rkmon.setVariable("TZ"_q, "America/Los_Angeles"_q);
    }

    QString createSubCategory(const QString& category, const QString& name, const QString& alias,
                              const QString& kind = "other"_q) const
    {
        return service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, category,
                                "--name"_q, name, "--alias"_q, alias, "--kind"_q, kind});
    }

    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(QDir(rkmon.folder()).filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    Result import(const QStringList& more, const QString& cell = "VH"_q) const
    {
        return rkmon.run(
            QStringList{"point"_q, "import"_q, "--cell"_q, cell, "--sub-category"_q, "SM"_q, "--json"_q} +
            more);
    }

    // The result of a command that must succeed.
    Result done(const QStringList& arguments) const
    {
        const Result result = rkmon.run(arguments);
        EXPECT_EQ(result.code, 0) << arguments.join(QLatin1Char(' ')).toStdString() << ": "
                                  << result.messages.toStdString();
        return result;
    }

    QJsonArray listed(const QStringList& arguments) const
    {
        return done(arguments + QStringList{"--json"_q}).array();
    }

    int samplesHeld(const QString& cell) const
    {
        return listed({"point"_q, "list"_q, "--cell"_q, cell, "--samples"_q}).size();
    }

    QString moisture;
};

QString text(const QJsonValue& object, const char* key)
{
    return object.toObject().value(QLatin1String(key)).toString();
}

double number(const QJsonValue& object, const char* key)
{
    return object.toObject().value(QLatin1String(key)).toDouble(std::nan(""));
}

// Readings of a file of the sample, taken apart by the simplest means: name, depth, time, count, value.
QList<QStringList> rowsOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeFirst();
    QList<QStringList> rows;
    for (const QString& line : lines) {
        rows.append(line.split(QLatin1Char(',')));
    }
    return rows;
}

// The day of an alarm's reading on the clock of the bluff, as text.
QString siteDay(const QJsonValue& detail)
{
    constexpr int offset = -8 * 3600; // seconds
    return QDateTime::fromString(text(detail, "monitorTime"), Qt::ISODateWithMs)
        .toOffsetFromUtc(offset)
        .date()
        .toString(Qt::ISODate);
}

} // namespace

TEST_F(RkmonImport, DeliversAndCanBeRepeated)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                                 "W1,20,2015-12-18T00:15:00-08:00,2,0.26\n"
                                                 "T1,,2015-12-18T00:15:00-08:00,2,-3.5\n");
    const Result first = import({file});
    ASSERT_EQ(first.code, 0) << first.messages.toStdString();
    QJsonObject counts = first.object();
    EXPECT_EQ(counts.take("newPointList"_q).toArray().size(), 2);
    EXPECT_EQ(counts, (QJsonObject{{"files"_q, 1},
                                   {"points"_q, 2},
                                   {"newPoints"_q, 2},
                                   {"samples"_q, 3},
                                   {"inserted"_q, 3},
                                   {"corrected"_q, 0},
                                   {"corrections"_q, QJsonArray()},
                                   {"unchanged"_q, 0},
                                   {"deliveries"_q, 1},
                                   {"alarms"_q, QJsonArray()},
                                   {"sent"_q, true}}));
    EXPECT_EQ(first.messages, QString());
    const Result again = import({file});
    EXPECT_EQ(again.code, 0) << again.messages.toStdString();
    EXPECT_EQ(again.object().value("newPoints"_q).toInt(-1), 0);
    EXPECT_EQ(again.object().value("unchanged"_q).toInt(-1), 3);
    EXPECT_EQ(samplesHeld("VH"_q), 3);
    const QJsonArray data = listed({"data"_q, "list"_q});
    ASSERT_EQ(data.size(), 1);
    EXPECT_EQ(listed({"data"_q, "history"_q, text(data[0], "id")}).size(), 1);
}

TEST_F(RkmonImport, SamplesComeBackAsTheFileThatWentIn)
{
    created("VH"_q);
    const QByteArray rows =
        "W1,20,2015-12-18T00:00:00-08:00,1,0.25\nW1,20,2015-12-18T00:15:00-08:00,2,0.26\n";
    ASSERT_EQ(import({write("a.csv", header + rows)}).code, 0);
    const Result out = done({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q, "--csv"_q});
    EXPECT_EQ(out.output, "subCategory,name,depth,time,count,value,timeFlag,initialValue\r\n"
                          "Soil moisture,W1,20,2015-12-18T00:00:00.000-08:00,1,0.25,,0.25\r\n"
                          "Soil moisture,W1,20,2015-12-18T00:15:00.000-08:00,2,0.26,,0.25\r\n"_q);
    const Result again = import({write("b.csv", out.output.toUtf8())});
    EXPECT_EQ(again.code, 0) << again.messages.toStdString();
    EXPECT_EQ(samplesHeld("VH"_q), 2);
}

TEST_F(RkmonImport, SendsNothingWhenARowIsBad)
{
    created("VH"_q);
    const QString good = write("good.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const QString bad = write("bad.csv", header + "W1,20,2015-12-19T00:00:00-08:00,2,0.25\n"
                                                  "W1,20,2015-13-19T00:00:00-08:00,3,0.25\n"
                                                  "W1,20,2015-12-20T00:00:00-08:00,4,NaN\n");
    const Result result = import({good, bad});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages, "%1:3: time \"2015-13-19T00:00:00-08:00\" does not exist\n"
                               "%1:4: value \"NaN\" is not a number\n"
                               "rkmon: nothing was sent: see the bad rows above\n"_q.arg(bad));
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, TakesTheFileOfASpreadsheetAndNamesItsBadLine)
{
    created("VH"_q);
    QByteArray content = "\xef\xbb\xbfname;depth;time;count;value\r\n";
    for (int line = 2; line <= 800; ++line) {
        content += "W1;20;2015-12-18T00:00:00-08:00;" + QByteArray::number(line) + ";0,25\r\n";
    }
    QByteArray broken = content;
    broken.replace("W1;20;2015-12-18T00:00:00-08:00;700;", "W1;20;2015-12-32T00:00:00-08:00;700;");
    const QString bad = write("bad.csv", broken);
    const Result refused = import({bad});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.messages, "%1:700: time \"2015-12-32T00:00:00-08:00\" does not exist\n"
                                "rkmon: nothing was sent: see the bad rows above\n"_q.arg(bad));
    const QString headless = write("headless.csv", QByteArray(content).replace(";count", QByteArray()));
    EXPECT_TRUE(
        import({headless}).messages.startsWith(headless + ":1: the header names no column \"count\""_q));
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);

    ASSERT_EQ(import({write("good.csv", content)}).code, 0);
    const QJsonArray held = listed({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q});
    ASSERT_EQ(held.size(), 799);
    EXPECT_EQ(number(held[0], "value"), 0.25);
}

TEST_F(RkmonImport, DryRunSendsNothing)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const Result result = import({file, "--dry-run"_q});
    EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_FALSE(result.object().value("sent"_q).toBool(true));
    EXPECT_EQ(result.object().value("samples"_q).toInt(), 1);
    EXPECT_EQ(result.messages, "rkmon: all rows are good; nothing was sent\n"_q);
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, TellsUsageAndWhatIsMissing)
{
    const QString file = write("a.csv", header);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q}).code, 2);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q, file}).code, 2);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q, file, "--delimiter"_q, "dot"_q}).code, 2);
    EXPECT_EQ(import({file, "--utc-offset"_q, "1"_q}).code, 2);
    EXPECT_EQ(import({"no-such-file.csv"_q}).code, 2);
    EXPECT_EQ(import({file, file}).code, 2);
    EXPECT_EQ(import({file}).code, 4); // no monitoring VH
    created("VH"_q);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "RF"_q, file}).code,
              4);
    const Result empty = import({file});
    EXPECT_EQ(empty.code, 0) << empty.messages.toStdString();
    EXPECT_EQ(empty.messages, "rkmon: %1: no readings\n"_q.arg(file));
    created("VH"_q);
    const Result several = import({file});
    EXPECT_EQ(several.code, 2);
    EXPECT_TRUE(several.messages.contains("several monitorings are called \"VH\""_q));
}

TEST_F(RkmonImport, ALoggersFileIsReadAsItsMappingSays)
{
    created("VH"_q);
    const QString map = write("logger.json", R"({"layout": "column-per-point", "skipLines": 1,
        "skipLinesBelowHeader": 1, "columns": {"time": "TIMESTAMP"}, "ignore": ["RECORD"],
        "timeZone": "America/Los_Angeles", "noReading": ["NAN"]})");
    const QString file =
        write("wall.dat", "\"TOA5\",\"Wall\",\"CR6\"\r\n\"TIMESTAMP\",\"RECORD\",\"W1\",\"W2\"\r\n"
                          "\"TS\",\"RN\",\"kPa\",\"kPa\"\r\n\"2015-12-18 00:00:00\",0,0.25,\"NAN\"\r\n"
                          "\"2015-12-18 00:15:00\",1,0.26,0.5\r\n");
    for (int repetition = 0; repetition < 2; ++repetition) {
        const Result result = import({file, "--map"_q, map});
        ASSERT_EQ(result.code, 0) << result.messages.toStdString();
        EXPECT_EQ(result.messages, "rkmon: %1: cells without a reading left out: 1\n"_q.arg(file));
    }
    const Result out = done({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q, "--csv"_q});
    EXPECT_EQ(out.output, "subCategory,name,depth,time,count,value,timeFlag,initialValue\r\n"
                          "Soil moisture,W1,,2015-12-18T00:00:00.000-08:00,1,0.25,,0.25\r\n"
                          "Soil moisture,W1,,2015-12-18T00:15:00.000-08:00,1,0.26,,0.25\r\n"
                          "Soil moisture,W2,,2015-12-18T00:15:00.000-08:00,1,0.5,,0.5\r\n"_q);
}

TEST_F(RkmonImport, OptionsSayHowAFileIsWritten)
{
    created("VH"_q);
    const QString file = write("export.csv", "Export\nPunkt;Datum;Uhrzeit;Setzung\n"
                                             "W1;01.12.2015;08:00;trocken\nW1;02.12.2015;08:00;0,5\n");
    const QStringList base{
        file,           "--skip-lines"_q, "1"_q,        "--column"_q, "name=Punkt"_q,    "--column"_q,
        "date=Datum"_q, "--column"_q,     "clock=#3"_q, "--column"_q, "value=Setzung"_q, "--constant"_q,
        "depth=2.50"_q, "--no-reading"_q, "trocken"_q};
    EXPECT_EQ(
        import(base).messages,
        "%1:2: the header names no column \"count\"; it must name Punkt, Datum, clock, count and Setzung\n"
        "rkmon: nothing was sent: see the bad rows above; --without depth and --without count read tables "
        "that have none\n"_q.arg(file));
    const QStringList counted =
        base + QStringList{"--without"_q, "count"_q, "--time-zone"_q, "Europe/Vienna"_q};
    EXPECT_EQ(
        import(counted).messages,
        "%1:3: every time of the file can be read in several ways, \"01.12.2015 08:00\" as day-month-year "
        "(2015-12-01) or month-day-year (2015-01-12): which is it?\n"
        "rkmon: nothing was sent: see the bad rows above; --time-format says which way it is: "
        "day-month-year, month-day-year\n"_q.arg(file));
    const Result result = import(counted + QStringList{"--time-format"_q, "day-month-year"_q});
    EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    const QJsonArray held = listed({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q});
    ASSERT_EQ(held.size(), 1);
    EXPECT_EQ(text(held[0], "depth"), "2.5"_q);
    EXPECT_EQ(QDateTime::fromString(text(held[0], "time"), Qt::ISODateWithMs),
              QDateTime::fromString("2015-12-02T07:00:00Z"_q, Qt::ISODate));
}

TEST_F(RkmonImport, AMappingIsProposedForAFile)
{
    const QString file =
        write("wall.csv", "Zeit;P1 [mm];P2 [mm]\n13.03.2024 08:00;1,5;-\n14.03.2024 08:00;1,75;2\n");
    const Result result = rkmon.run({"point"_q, "import"_q, "--write-map"_q, file});
    EXPECT_EQ(result.code, 0);
    EXPECT_TRUE(result.messages.contains("rkmon: recognised: layout column-per-point\n"_q));
    EXPECT_TRUE(result.messages.endsWith(
        "rkmon: warning: left open: timeZone or utcOffset: the times name no offset from UTC\n"_q));
    EXPECT_EQ(result.object().value("timeFormat"_q).toString(), "day-month-year"_q);
    created("VH"_q);
    const QString map = write("wall.json", result.output.toUtf8());
    const Result imported = import({file, "--map"_q, map, "--time-zone"_q, "Europe/Vienna"_q});
    EXPECT_EQ(imported.code, 0) << imported.messages.toStdString();
    EXPECT_EQ(samplesHeld("VH"_q), 3);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q, "--write-map"_q}).code, 2);
    EXPECT_EQ(rkmon.run({"point"_q, "import"_q, "--write-map"_q, write("note.txt", "no table\n")}).code, 2);
}

TEST_F(RkmonImport, BadRowsCanBeLeftOutAndMended)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                                 "W1,20,2015-13-19T00:00:00-08:00,2,0.26\n"
                                                 "W1,20,2015-12-20T00:00:00-08:00,3,\"high\"\n"
                                                 "W1,20,2015-12-21T00:00:00-08:00,4,0.27\n");
    const QString bad = QDir(rkmon.folder()).filePath("bad.csv"_q);
    const QString reasons = "%1:3: time \"2015-13-19T00:00:00-08:00\" does not exist\n"
                            "%1:4: value \"high\" is not a number\n"_q.arg(file);
    const Result tried = import({file, "--skip-bad-rows"_q, bad, "--dry-run"_q});
    EXPECT_EQ(tried.code, 0);
    EXPECT_EQ(tried.messages, reasons + "rkmon: warning: bad rows that would be left out: 2\n"
                                        "rkmon: the other rows are good; nothing was sent\n"_q);
    EXPECT_FALSE(QFile::exists(bad));

    const Result result = import({file, "--skip-bad-rows"_q, bad});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.messages, reasons + "rkmon: warning: bad rows left out: 2; they are in %1\n"_q.arg(bad));
    EXPECT_EQ(samplesHeld("VH"_q), 2);
    QFile written(bad);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    QByteArray content = written.readAll();
    written.close();
    const QByteArray name = file.toUtf8();
    EXPECT_EQ(content, "name,depth,time,count,value,reason\n"
                       "W1,20,2015-13-19T00:00:00-08:00,2,0.26,\"" +
                           name +
                           ":3: time \"\"2015-13-19T00:00:00-08:00\"\" does not exist\"\n"
                           "W1,20,2015-12-20T00:00:00-08:00,3,\"high\",\"" +
                           name + ":4: value \"\"high\"\" is not a number\"\n");

    const QString mended =
        write("mended.csv", content.replace("2015-13", "2015-12").replace("\"high\",", "0.5,"));
    const Result again = import({mended, "--skip-bad-rows"_q, QDir(rkmon.folder()).filePath("none.csv"_q)});
    EXPECT_EQ(again.messages, "rkmon: warning: %1: the column \"reason\" is not read\n"_q.arg(mended));
    EXPECT_EQ(samplesHeld("VH"_q), 4);
    EXPECT_FALSE(QFile::exists(QDir(rkmon.folder()).filePath("none.csv"_q)));
    EXPECT_EQ(import({file, "--skip-bad-rows"_q, bad}).code, 2); // never written over
}

TEST_F(RkmonImport, AFileThatCannotBeReadAtAllIsNoMatterOfRows)
{
    created("VH"_q);
    const QString bad = QDir(rkmon.folder()).filePath("bad.csv"_q);
    const QString good = write("good.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const QString headless = write("headless.csv", "name,time\nW1,2015-12-18T00:00:00-08:00\n");
    const Result result = import({good, headless, "--skip-bad-rows"_q, bad});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.messages.startsWith(headless + ":1: the header names no column"_q));
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
    EXPECT_FALSE(QFile::exists(bad));
    const QString one = write("one.csv", header + "W1,20,never,1,0.25\n");
    const QString other =
        write("other.csv", "value,name,depth,time,count\nhigh,W1,20,2015-12-18T00:00:00Z,1\n");
    const Result unlike = import({one, other, "--skip-bad-rows"_q, bad});
    EXPECT_EQ(unlike.code, 2);
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, RefusesWordsThatSayNothingOfAFile)
{
    const QString file = write("a.csv", header);
    const auto refusal = [&](const QStringList& more) {
        const Result result = import(QStringList{file} + more);
        EXPECT_EQ(result.code, 2) << more.join(u' ').toStdString();
        return result.messages;
    };
    EXPECT_EQ(refusal({"--time-zone"_q, "Vienna"_q}),
              "rkmon: --time-zone: \"Vienna\" is not a zone like Europe/Berlin\n"_q);
    EXPECT_EQ(
        refusal({"--column"_q, "Punkt"_q}),
        "rkmon: --column: \"Punkt\" is not like time=Date; before the \"=\" goes one of name, depth, time, "
        "date, clock, count, value, timeFlag, subCategory, initialValue\n"_q);
    EXPECT_EQ(refusal({"--constant"_q, "count=many"_q}),
              "rkmon: --constant: count \"many\" is not a whole number from 0 to 2147483647\n"_q);
    EXPECT_EQ(refusal({"--no-header"_q, "--column"_q, "name=Punkt"_q}),
              "rkmon: without a header a column is given by its number, not as \"Punkt\"\n"_q);
    refusal({"--time-zone"_q, "Europe/Vienna"_q, "--utc-offset"_q, "+01:00"_q});
    refusal({"--encoding"_q, "ansi"_q});
    refusal({"--time-format"_q, "guess"_q});
    refusal({"--map"_q, "no-such-file.json"_q});
    const QString chinese =
        write("b.csv", "name,depth,time,count,value\n\xb2\xe2,,2015-12-18T00:00:00Z,1,0.5\n");
    EXPECT_EQ(
        import({chinese}).messages,
        "%1:2: the text is not UTF-8\nrkmon: nothing was sent: see the bad rows above; --encoding says which "
        "it is: it can be read as gb18030, windows-1252\n"_q.arg(chinese));
}

TEST_F(RkmonImport, ReaderMayNotDeliver)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    actAs(reader);
    const Result result = import({file});
    EXPECT_NE(result.code, 0);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, LaterFilesLeaveTheInitialValueAlone)
{
    const QString cell = created("VH"_q);
    done({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--name"_q, "Probes"_q,
          "--point"_q, "W1"_q, "--total-limit"_q, "1"_q});
    const auto deliver = [&](const char* name, const QByteArray& row) {
        const Result result = import({write(name, header + row)});
        EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    };
    deliver("a.csv", "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    deliver("b.csv", "W1,20,2015-12-19T00:00:00-08:00,2,1\n");
    EXPECT_EQ(listed({"alarm"_q, "list"_q}).size(), 0);
    deliver("c.csv", "W1,20,2015-12-20T00:00:00-08:00,3,1.5\n");
    const QJsonArray alarms = listed({"alarm"_q, "list"_q, "--cell"_q, cell, "--sub-category"_q, "SM"_q});
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_EQ(number(alarms[0], "pointCounts"), 1);
    const QJsonArray details = listed({"alarm"_q, "detail"_q, text(alarms[0], "id")});
    ASSERT_EQ(details.size(), 1);
    EXPECT_EQ(text(details[0], "pointName"), "W1"_q);
    EXPECT_EQ(text(details[0], "totalVar"), "1.25"_q);
    EXPECT_EQ(number(details[0], "totalBeyound"), 0.25);
    EXPECT_EQ(listed({"alarm"_q, "list"_q, "--name"_q, "nothing"_q}).size(), 0);
}

TEST_F(RkmonImport, AlarmsAreOpenUntilALaterReadingIsWithin)
{
    created("VH"_q);
    done({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--name"_q, "Probes"_q,
          "--point"_q, "W1"_q, "--total-limit"_q, "1"_q});
    const auto deliver = [&](const char* name, const QByteArray& rows) {
        const Result result = import({write(name, header + rows)});
        EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    };
    const QStringList command{"alarm"_q, "list"_q, "--open"_q};
    EXPECT_EQ(listed(command).size(), 0);
    deliver("a.csv", "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                     "W1,20,2015-12-19T00:00:00-08:00,2,1.5\n");
    const QJsonArray open = listed(command);
    EXPECT_EQ(open.size(), 1);
    EXPECT_EQ(open, listed({"alarm"_q, "list"_q}));
    EXPECT_EQ(listed(command + QStringList{"--all"_q}), open);
    EXPECT_EQ(listed(command + QStringList{"--cell"_q, "VH"_q, "--limit"_q, "1"_q}), open);
    EXPECT_EQ(listed(command + QStringList{"--skip"_q, "1"_q}).size(), 0);
    EXPECT_EQ(listed(command + QStringList{"--name"_q, "nothing"_q}).size(), 0);
    deliver("b.csv", "W1,20,2015-12-20T00:00:00-08:00,3,0.5\n");
    EXPECT_EQ(listed(command).size(), 0);
    EXPECT_EQ(listed({"alarm"_q, "list"_q}).size(), 1);
}

TEST_F(RkmonImport, PagesOfOpenAlarmsAreOfTheseAlone)
{
    const QStringList monitorings{"LS-a"_q, "LS-b"_q, "VH"_q};
    for (const QString& monitoring : monitorings) {
        created(monitoring);
        done({"group"_q, "create"_q, "--cell"_q, monitoring, "--sub-category"_q, "SM"_q, "--name"_q,
              "Probes"_q, "--point"_q, "W1"_q, "--total-limit"_q, "1"_q});
        const QByteArray latest = monitoring == "LS-b"_q ? "0.5" : "1.75";
        done({"point"_q, "import"_q, "--cell"_q, monitoring, "--sub-category"_q, "SM"_q,
              write("a.csv", header +
                                 "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                 "W1,20,2015-12-19T00:00:00-08:00,2,1.5\n"
                                 "W1,20,2015-12-20T00:00:00-08:00,3," +
                                 latest + "\n")});
    }
    EXPECT_EQ(listed({"alarm"_q, "list"_q}).size(), 3);
    const auto page = [&](const QStringList& options) {
        return done(QStringList{"alarm"_q, "list"_q, "--open"_q, "--csv"_q, "--columns"_q, "cellName"_q} +
                    options);
    };
    EXPECT_EQ(page({}).output, "cellName\r\nVH\r\nLS-a\r\n"_q);
    const Result first = page({"--limit"_q, "1"_q});
    EXPECT_EQ(first.output, "cellName\r\nVH\r\n"_q);
    EXPECT_EQ(first.messages, "rkmon: 1 of 2 shown; --skip 1 continues, --all shows everything\n"_q);
    EXPECT_EQ(page({"--limit"_q, "1"_q, "--skip"_q, "1"_q}).output, "cellName\r\nLS-a\r\n"_q);
    EXPECT_EQ(page({"--cell"_q, "LS-a"_q, "--cell"_q, "LS-b"_q}).output, "cellName\r\nLS-a\r\n"_q);
}

TEST_F(RkmonImport, APointOfAnotherSubCategoryIsAnotherPoint)
{
    created("VH"_q);
    createSubCategory("Slope"_q, "Tilt"_q, "TI"_q);
    done({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "TI"_q, "--name"_q, "Tilt"_q,
          "--point"_q, "P1"_q, "--total-limit"_q, "1"_q});
    const auto deliver = [&](const char* subCategory, const char* name, const QByteArray& rows) {
        const Result result = done({"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q,
                                    QString::fromUtf8(subCategory), "--json"_q, write(name, header + rows)});
        return result.object().value("newPoints"_q).toInt(-1);
    };
    EXPECT_EQ(deliver("SM", "a.csv", "P1,20,2015-12-18T00:00:00-08:00,1,0.25\n"), 1);
    EXPECT_EQ(deliver("TI", "b.csv", "P2,20,2015-12-18T00:00:00-08:00,1,7\n"), 1);
    // Both sub-categories hold data, and of P1 there is one.
    EXPECT_EQ(deliver("SM", "c.csv", "P1,20,2015-12-19T00:00:00-08:00,2,0.26\n"), 0);
    EXPECT_EQ(deliver("TI", "d.csv", "P1,20,2015-12-19T00:00:00-08:00,2,5\n"), 1);
    EXPECT_EQ(deliver("TI", "e.csv", "P1,20,2015-12-20T00:00:00-08:00,3,5.75\n"), 0);
    EXPECT_EQ(listed({"alarm"_q, "list"_q}).size(), 0);
    EXPECT_EQ(deliver("TI", "f.csv", "P1,20,2015-12-21T00:00:00-08:00,4,6.5\n"), 0);
    const QJsonArray alarms = listed({"alarm"_q, "list"_q});
    ASSERT_EQ(alarms.size(), 1);
    EXPECT_EQ(text(listed({"alarm"_q, "detail"_q, text(alarms[0], "id")})[0], "totalVar"), "1.5"_q);
}

TEST_F(RkmonImport, WhenTheSubCategoryOfAPointCannotBeToldItsInitialValueStays)
{
    const QByteArray time = R"("createdAt":"2015-12-18T09:00:00.000Z")";
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])");
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])");
    server.answerJson(404, noResource);
    server.answerJson(
        200, R"([{"_id":"d1","subCategoryId":"0123456789abcdef01234568"},{"_id":"d2","subCategoryId":"x"}])");
    server.answerJson(200, R"({"count":2})");
    server.answerJson(
        200, R"([{"time":"2015-12-18T00:00:00.000-08:00","data":[{"_id":"p","name":"W1","depth":"20",)"
             R"("time":"2015-12-18T08:00:00Z","value":1,"count":1}]}])");
    server.answerJson(200, R"([{"_id":"p","name":"W1","depth":"20",)" + time + "}]");
    server.answerJson(200, "[{" + time + "}]"); // both were delivered to when the point was made
    server.answerJson(200, "[{" + time + "}]");
    server.answerJson(200, "[]");
    const Result result = import({write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n")});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.messages,
              "rkmon: warning: W1 at depth 20 is taken for a point that exists already, so it gets "
              "no initial value\n"
              "rkmon: the service does not tell what became of the samples\n"_q);
    EXPECT_TRUE(server.isUsedUp());
    const QJsonArray body = QJsonDocument::fromJson(server.requests().last().body).array();
    EXPECT_EQ(body[0].toArray()[0].toObject().value("initialValue"_q).toDouble(-1), 0);
}

TEST_F(RkmonImport, ProgressIsShownOnATerminalOnly)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const QStringList command{"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, file};
    const Result shown = rkmon.runOnTerminal(command, 80);
    EXPECT_EQ(shown.code, 0);
    EXPECT_TRUE(shown.output.contains("[------------------------------] 0 of 1 samples"_q))
        << shown.output.toStdString();
    EXPECT_TRUE(shown.output.contains("[##############################] 1 of 1 samples, "_q))
        << shown.output.toStdString();
    EXPECT_TRUE(shown.output.contains("/s, 0 s left"_q));
    const Result plain = rkmon.run(command);
    EXPECT_EQ(plain.code, 0);
    EXPECT_EQ(plain.messages, QString());
    EXPECT_FALSE(plain.output.contains("of 1 samples"_q));
}

TEST_F(RkmonImport, TablesNameMonitoringsAndSubCategories)
{
    const QString cell = created("VH"_q);
    created("LS-a"_q);
    const QString group = done({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q,
                                "--name"_q, "Probes"_q, "--point"_q, "W1"_q, "--total-limit"_q, "0.01"_q})
                              .output.trimmed();
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.26\n"
                                                 "W1,20,2015-12-18T00:15:00-08:00,2,0.249\n");
    ASSERT_EQ(import({file}).code, 0);
    ASSERT_EQ(import({file}, "LS-a"_q).code, 0);
    for (const char* kind : {"data", "alarm", "group"}) {
        const QString table = done({QString::fromUtf8(kind), "list"_q}).output;
        EXPECT_TRUE(table.contains("VH"_q) && table.contains("Soil moisture"_q)) << table.toStdString();
        EXPECT_FALSE(table.contains(cell) || table.contains(moisture)) << table.toStdString();
        const QJsonArray list = listed({QString::fromUtf8(kind), "list"_q});
        ASSERT_FALSE(list.isEmpty()) << kind;
        const QJsonValue last = list.last(); // the older one
        EXPECT_EQ(text(last, "cellId"), cell);
        EXPECT_EQ(text(last, "cellName"), "VH"_q);
        EXPECT_EQ(text(last, "subCategoryId"), moisture);
        EXPECT_EQ(text(last, "subCategoryName"), "Soil moisture"_q);
    }
    const QString alarm = text(listed({"alarm"_q, "list"_q})[0], "id");
    const QString details = done({"alarm"_q, "detail"_q, alarm}).output;
    EXPECT_TRUE(details.contains("  -0.011  "_q)) << details.toStdString();
    EXPECT_EQ(text(listed({"alarm"_q, "detail"_q, alarm})[0], "totalVar"), "-0.011"_q);
    const QJsonObject changed =
        done({"group"_q, "update"_q, group, "--total-limit"_q, "2"_q, "--json"_q}).object();
    EXPECT_EQ(text(changed, "cellName"), "VH"_q);
}

TEST_F(RkmonImport, NamesCostNoRequestPerRow)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, R"([{"_id":"d1","cellId":"c1","subCategoryId":"s1"},)"
                           R"({"_id":"d2","cellId":"c2","subCategoryId":"s1"},)"
                           R"({"_id":"d3","cellId":"c1","subCategoryId":"s1"}])");
    server.answerJson(200, R"([{"_id":"c1","name":"North"},{"_id":"c2","name":"South"}])");
    server.answerJson(200, R"({"_id":"s1","name":"Tilt"})");
    const QString table = done({"data"_q, "list"_q}).output;
    EXPECT_EQ(table.count("North"_q), 2);
    EXPECT_EQ(table.count("South"_q), 1);
    EXPECT_EQ(table.count("Tilt"_q), 3);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonImport, PointsAreListedShownFoundAndLinked)
{
    created("VH"_q);
    ASSERT_EQ(import({write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                              "W1,20,2015-12-19T00:00:00-08:00,2,0.26\n"
                                              "W2,30,2015-12-20T00:00:00-08:00,3,0.3\n")})
                  .code,
              0);
    const QJsonArray points = listed({"point"_q, "list"_q, "--cell"_q, "VH"_q});
    ASSERT_EQ(points.size(), 2);
    const QJsonArray named = listed({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--name"_q, "W1"_q});
    ASSERT_EQ(named.size(), 1);
    EXPECT_EQ(number(named[0], "samples"), 2);
    EXPECT_EQ(number(named[0], "latestValue"), 0.26);
    const QJsonArray ofDay = listed(
        {"point"_q, "list"_q, "--cell"_q, "VH"_q, "--since"_q, "2015-12-18"_q, "--until"_q, "2015-12-18"_q});
    ASSERT_EQ(ofDay.size(), 1);
    EXPECT_EQ(number(ofDay[0], "samples"), 1);

    const QJsonObject shown = done({"point"_q, "show"_q, text(named[0], "id"), "--json"_q}).object();
    EXPECT_EQ(shown.value("name"_q).toString(), "W1"_q);
    EXPECT_EQ(rkmon.run({"point"_q, "show"_q, "000000000000000000000000"_q}).code, 4);
    const QJsonObject latest = done({"point"_q, "latest"_q, "--cell"_q, "VH"_q, "--json"_q}).object();
    EXPECT_EQ(latest.value("name"_q).toString(), "W2"_q);
    EXPECT_EQ(rkmon.run({"point"_q, "latest"_q, "--cell"_q, "VH"_q, "--name"_q, "none"_q}).code, 4);

    EXPECT_EQ(rkmon.run({"point"_q, "link"_q, "--cell"_q, "VH"_q, "--link"_q, "model=u1"_q}).code, 2);
    EXPECT_EQ(
        rkmon.run({"point"_q, "link"_q, "--cell"_q, "VH"_q, "--name"_q, "W1"_q, "--link"_q, "u1"_q}).code, 2);
    done({"point"_q, "link"_q, "--cell"_q, "VH"_q, "--name"_q, "W1"_q, "--link"_q, "model=u1"_q});
    const QJsonArray found = listed({"point"_q, "find"_q, "u1"_q});
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(text(found[0], "name"), "W1"_q);
    EXPECT_EQ(found[0].toObject().value("links"_q).toArray(), QJsonArray{"model=u1"_q});
    done({"point"_q, "link"_q, "--cell"_q, "VH"_q, "--every-point"_q, "--no-links"_q});
    EXPECT_EQ(listed({"point"_q, "find"_q, "u1"_q}).size(), 0);
}

TEST_F(RkmonImport, GroupsAreCreatedChangedAndDeleted)
{
    const QString cell = created("VH"_q);
    const QString id =
        done({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, moisture, "--name"_q, "Probes"_q,
              "--point"_q, "W1"_q, "--point"_q, "W, 2"_q, "--total-limit"_q, "0.5"_q, "--daily-in"_q,
              "percent"_q, "--daily-limit"_q, "4"_q})
            .output.trimmed();
    const QJsonArray groups = listed({"group"_q, "list"_q, "--cell"_q, cell});
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(text(groups[0], "id"), id);
    EXPECT_EQ(text(groups[0], "dailyIn"), "percent"_q);
    EXPECT_EQ(number(groups[0], "dailyLimit"), 4);
    EXPECT_EQ(number(groups[0], "totalLimit"), 0.5);
    EXPECT_EQ(groups[0].toObject().value("points"_q).toArray(), (QJsonArray{"W1"_q, "W, 2"_q}));
    EXPECT_EQ(listed({"group"_q, "list"_q, "--category"_q, "Slope"_q}), groups);
    EXPECT_EQ(listed({"group"_q, "list"_q, "--category"_q, "Pit"_q}).size(), 0);

    const QJsonObject updated =
        done({"group"_q, "update"_q, id, "--total-limit"_q, "0.75"_q, "--json"_q}).object();
    EXPECT_EQ(updated.value("totalLimit"_q).toDouble(), 0.75);
    EXPECT_EQ(updated.value("dailyLimit"_q).toDouble(), 4.0);
    const Result same = done({"group"_q, "update"_q, id, "--total-limit"_q, "0.75"_q});
    EXPECT_EQ(same.messages, "rkmon: nothing to change\n"_q);
    EXPECT_EQ(rkmon.run({"group"_q, "update"_q, id}).code, 2);
    EXPECT_EQ(rkmon.run({"group"_q, "update"_q, id, "--total-limit"_q, "-1"_q}).code, 2);
    EXPECT_EQ(rkmon.run({"group"_q, "update"_q, "000000000000000000000000"_q, "--name"_q, "x"_q}).code, 4);

    EXPECT_EQ(rkmon.run({"group"_q, "delete"_q, id}).code, 2);
    done({"group"_q, "delete"_q, "--yes"_q, id});
    EXPECT_EQ(listed({"group"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, StatisticsAreShownAndDrawn)
{
    created("VH"_q);
    ASSERT_EQ(import({write("a.csv", header + "I1,2.5,2015-12-18T08:00:00-08:00,1,1\n"
                                              "I1,2.5,2015-12-18T23:00:00-08:00,2,2\n"
                                              "I1,10,2015-12-18T08:00:00-08:00,1,3\n"
                                              "I1,2.5,2015-12-19T08:00:00-08:00,3,4\n"
                                              "I1,10,2015-12-19T08:00:00-08:00,3,5\n"
                                              "S1,,2015-12-19T08:00:00-08:00,3,6\n")})
                  .code,
              0);
    EXPECT_EQ(done({"stats"_q, "normal"_q, "--cell"_q, "VH"_q, "--name"_q, "S1"_q, "--csv"_q})
                  .output.count("\r\n"_q),
              2);
    const QJsonArray depths = listed({"stats"_q, "depth"_q, "--cell"_q, "VH"_q});
    ASSERT_EQ(depths.size(), 4);
    EXPECT_EQ(text(depths[0], "day"), "2015-12-18"_q);
    EXPECT_EQ(text(depths[0], "depth"), "2.5"_q);
    EXPECT_EQ(number(depths[0], "value"), 2);
    EXPECT_EQ(text(depths[1], "depth"), "10"_q);
    EXPECT_EQ(listed({"stats"_q, "depth"_q, "--cell"_q, "VH"_q, "--since"_q, "2015-12-19"_q}).size(), 2);

    const Result drawn = done({"stats"_q, "depth"_q, "--cell"_q, "VH"_q, "--draw"_q});
    EXPECT_TRUE(drawn.output.contains(QString::fromUtf8("○ 2015-12-18   ● 2015-12-19")));
    const QStringList draw{"stats"_q, "depth"_q, "--cell"_q, "VH"_q, "--draw"_q};
#ifdef Q_OS_UNIX
    // The prompt has the last line.
    EXPECT_EQ(rkmon.runOnTerminal(draw, 80).output.count("\n"_q), Program::terminalLines - 1);
#endif
    for (const int lines : {12, 40}) {
        rkmon.setVariable("LINES"_q, QString::number(lines));
        EXPECT_EQ(done(draw).output.count("\n"_q), lines - 1);
    }
    const QString svg = QDir(rkmon.folder()).filePath("a.svg"_q);
    const Result plotted =
        done({"stats"_q, "normal"_q, "--cell"_q, "VH"_q, "--plot"_q, svg, "--unit"_q, "mm"_q});
    EXPECT_EQ(plotted.output, QString());
    QFile file(svg);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    for (const char* label : {"Soil moisture (mm)", "Date (UTC-08:00)", "I1, 2.5", "S1"}) {
        EXPECT_TRUE(content.contains(label)) << label;
    }
    EXPECT_EQ(rkmon.run({"stats"_q, "normal"_q, "--cell"_q, "VH"_q, "--plot"_q, "a.jpg"_q}).code, 2);
    EXPECT_EQ(rkmon.run({"stats"_q, "normal"_q, "--cell"_q, "VH"_q, "--name"_q, "none"_q, "--draw"_q}).code,
              4);
}

TEST_F(RkmonImport, DataIsDeletedWithWhatCameWithIt)
{
    created("VH"_q);
    ASSERT_EQ(import({write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n")}).code, 0);
    const QJsonArray data = listed({"data"_q, "list"_q, "--cell"_q, "VH"_q});
    ASSERT_EQ(data.size(), 1);
    EXPECT_EQ(text(data[0], "alias"), "SM"_q);
    const QString id = text(data[0], "id");
    EXPECT_EQ(rkmon.run({"data"_q, "delete"_q, id}).code, 2);
    done({"data"_q, "delete"_q, "--yes"_q, id});
    EXPECT_EQ(listed({"data"_q, "list"_q}).size(), 0);
    EXPECT_EQ(listed({"point"_q, "list"_q, "--cell"_q, "VH"_q}).size(), 0);
    EXPECT_EQ(rkmon.run({"data"_q, "history"_q, id}).code, 4);
}

TEST_F(RkmonImport, ProjectFileNamesWhatTheAdministratorMustMake)
{
    const QString plan = write("project.json", R"({"categories": ["Slope", "Dam"],
        "subCategories": [{"category": "Slope", "name": "Rain", "alias": "RF"}],
        "monitorings": [{"name": "VH", "category": "Slope"}]})");
    const Result result = rkmon.run({"point"_q, "import"_q, "--project-file"_q, plan});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.messages.contains("monitor-service admin --data FILE category add 'Dam'"_q));
    EXPECT_TRUE(result.messages.contains(
        "subcategory create --project %1 --category 'Slope' --name 'Rain' --alias 'RF'"_q.arg(project)))
        << result.messages.toStdString();
    EXPECT_EQ(listed({"monitoring"_q, "list"_q}).size(), 0);
}

TEST_F(RkmonImport, TheSampleOfARealSite)
{
    service().admin({"category"_q, "add"_q, "Landslide slope"_q});
    createSubCategory("Landslide slope"_q, "Soil moisture"_q, "SM"_q);
    createSubCategory("Landslide slope"_q, "Rainfall"_q, "RF"_q);
    createSubCategory("Landslide slope"_q, "Air temperature"_q, "AT"_q);
    const QStringList command{"point"_q, "import"_q, "--json"_q, "--project-file"_q,
                              samples + "/coastal-bluff/project.json"_q};
    for (int run = 0; run < 2; ++run) {
        const Result result = done(command);
        EXPECT_EQ(result.object().value("samples"_q).toInt(), 30912);
        EXPECT_EQ(result.object().value("deliveries"_q).toInt(), 22);
        EXPECT_EQ(result.object().value("points"_q).toInt(), 23);
        EXPECT_EQ(result.object().value("newPoints"_q).toInt(-1), run == 0 ? 23 : 0);
        int held = 0;
        for (const char* station : {"VH", "LS-a", "LS-b", "M1", "M2"}) {
            held += samplesHeld(QString::fromUtf8(station));
        }
        EXPECT_EQ(held, 30912);

        // The rain of 21 December, and what it brought and left; worked out from the files.
        QStringList found;
        for (const QJsonValue& alarm : listed({"alarm"_q, "list"_q})) {
            for (const QJsonValue& detail : listed({"alarm"_q, "detail"_q, text(alarm, "id")})) {
                found.append("%1 %2"_q.arg(siteDay(detail), text(detail, "pointName")));
            }
        }
        found.sort();
        EXPECT_EQ(found, (QStringList{"2015-12-21 LS-a-W1"_q, "2015-12-21 LS-a-W2"_q, "2015-12-21 VH-W5"_q,
                                      "2015-12-26 LS-b-W1"_q, "2015-12-31 LS-a-W1"_q}));
    }
}

TEST_F(RkmonImport, SumsAndDaysOfTheSampleAreThoseOfItsFiles)
{
    created("LS-a"_q);
    QStringList files;
    QMap<QString, double> sums;                     // by point
    QMap<QString, QMap<QString, double>> lastOfDay; // by day and point
    for (const char* name : {"LS-a-moisture-week1.csv", "LS-a-moisture-week2.csv"}) {
        files.append(samples + "/coastal-bluff/"_q + QString::fromUtf8(name));
        for (const QStringList& row : rowsOf(files.last())) {
            const QString point = row[0] + QLatin1Char('@') + row[1];
            sums[point] += row[4].toDouble();
            lastOfDay[row[2].left(10)][point] = row[4].toDouble(); // rows of a point stand in time order
        }
    }
    ASSERT_EQ(import(files, "LS-a"_q).code, 0);

    QMap<QString, double> held;
    for (const QJsonValue& sample : listed({"point"_q, "list"_q, "--cell"_q, "LS-a"_q, "--samples"_q})) {
        held[text(sample, "name") + QLatin1Char('@') + text(sample, "depth")] += number(sample, "value");
    }
    ASSERT_EQ(held.keys(), sums.keys());
    for (const QString& point : sums.keys()) {
        EXPECT_NEAR(held[point], sums[point], 1e-9) << point.toStdString();
    }

    for (const char* statistic : {"normal", "depth"}) {
        QMap<QString, QMap<QString, double>> shown;
        for (const QJsonValue& entry :
             listed({"stats"_q, QString::fromUtf8(statistic), "--cell"_q, "LS-a"_q})) {
            shown[text(entry, "day")][text(entry, "name") + QLatin1Char('@') + text(entry, "depth")] =
                number(entry, "value");
        }
        EXPECT_EQ(shown, lastOfDay) << statistic;
    }
}

TEST_F(RkmonImport, AGeneratedExcavationRaisesTwoPoints)
{
    service().admin({"category"_q, "add"_q, "Foundation pit"_q});
    createSubCategory("Foundation pit"_q, "Settlement"_q, "ST"_q);
    createSubCategory("Foundation pit"_q, "Horizontal displacement"_q, "IN"_q, "inclinometer"_q);
    const QString folder = QDir(rkmon.folder()).filePath("pit"_q);
    const Result made = rkmon.runShell(
        "'%1/generate' --points 6 --inclinometers 2 --days 10 --out '%2'"_q.arg(samples, folder));
    ASSERT_EQ(made.code, 0) << made.messages.toStdString();
    const Result result =
        done({"point"_q, "import"_q, "--json"_q, "--project-file"_q, folder + "/project.json"_q});
    EXPECT_EQ(result.object().value("points"_q).toInt(), 6 + 2 * 40);
    EXPECT_EQ(result.object().value("samples"_q).toInt(), 10 * (6 + 2 * 40));
    EXPECT_EQ(result.object().value("deliveries"_q).toInt(), 4);

    QStringList over;
    QString inclinometer;
    for (const QJsonValue& alarm : listed({"alarm"_q, "list"_q})) {
        for (const QJsonValue& detail : listed({"alarm"_q, "detail"_q, text(alarm, "id")})) {
            over.append(text(detail, "pointName"));
            if (detail.toObject().value("isInclinometer"_q).toBool()) {
                inclinometer = text(detail, "id");
            }
        }
    }
    over.removeDuplicates();
    over.sort();
    EXPECT_EQ(over, (QStringList{"IN001"_q, "SP0002"_q}));
    EXPECT_EQ(listed({"alarm"_q, "depths"_q, inclinometer}).size(), 40);
    EXPECT_EQ(listed({"alarm"_q, "depths"_q, inclinometer, "--depth"_q, "2.5"_q}).size(), 1);

    const QString png = folder + "/a.png"_q;
    done({"stats"_q, "depth"_q, "--cell"_q, "Excavation"_q, "--name"_q, "IN001"_q, "--plot"_q, png});
    EXPECT_GT(QFileInfo(png).size(), 20'000);
    EXPECT_EQ(rkmon.run({"stats"_q, "depth"_q, "--cell"_q, "Excavation"_q, "--draw"_q}).code,
              2); // two inclinometers
}

TEST_F(RkmonImport, ARefusedDeliveryTellsTheServicesWordsAndTheFile)
{
    const QByteArray cell = R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])";
    const QByteArray subCategory =
        R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])";
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, cell);
    server.answerJson(200, subCategory);
    server.answerJson(404, noResource);
    server.answerJson(200, "[]"); // no data yet
    server.answerJson(200, R"({"count":0})");
    server.answerJson(500, R"({"message":"[0][0].data[0].time is in the future","status":500})");
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const Result result = import({file});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(
        result.messages,
        "rkmon: the service refused %1: [0][0].data[0].time is in the future ([0] is %1)\n"_q.arg(file));
    EXPECT_TRUE(server.isUsedUp());
    const QJsonArray body = QJsonDocument::fromJson(server.requests().last().body).array();
    ASSERT_EQ(body.size(), 1);
    EXPECT_EQ(body[0].toArray().size(), 1);
    EXPECT_EQ(body[0].toArray()[0].toObject().value("initialValue"_q).toDouble(), 0.25);
}

TEST_F(RkmonImport, ADeliveryThatIsNotPermittedEndsWith3)
{
    created("VH"_q);
    const QString file = write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    actAs(reader);
    const Result refused = import({file});
    EXPECT_EQ(refused.code, 3);
    EXPECT_TRUE(refused.messages.startsWith("rkmon: cannot deliver %1: not permitted ("_q.arg(file)))
        << refused.messages.toStdString();

    const MonitorService::Token writer = service().createTokenWithoutRights("Ben"_q);
    service().admin(
        {"grant"_q, "--token"_q, writer.id, "--project"_q, project, "--rights"_q, "read,create"_q});
    actAs(writer);
    EXPECT_EQ(import({file}).code, 0);
    EXPECT_EQ(import({file}).code, 0);
    const QString other = write("b.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.5\n");
    EXPECT_EQ(import({other}).code, 3);
}

TEST_F(RkmonImport, ABreakTellsWhatWasDeliveredBefore)
{
    const QByteArray cell = R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])";
    const QByteArray subCategory =
        R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])";
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, cell);
    server.answerJson(200, subCategory);
    server.answerJson(404, noResource);
    server.answerJson(200, "[]");
    server.answerJson(200, R"({"count":0})");
    server.answerJson(200, "[]");
    server.answerRaw({ScriptServer::Step::reset()});
    // Two files of one target go in two requests.
    const QString second = write("b.csv", header + "W1,20,2015-12-19T00:00:00-08:00,2,0.25\n");
    const Result result =
        import({write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"), second});
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.messages, "rkmon: cannot deliver %1: the connection to %2 broke before the answer was "
                               "complete; 1 of 2 samples had "
                               "been delivered before; the import can be repeated safely\n"_q.arg(
                                   second, server.baseAddress()));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(RkmonImport, ALostCreationCanBeRepeatedToo)
{
    ScriptServer server;
    rkmon.configure(server.baseAddress(), project, editor.text);
    server.answerJson(200, R"(["Slope"])");
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Soil moisture","alias":"SM"}])");
    server.answerJson(200, "[]"); // no monitoring yet
    server.answerRaw({ScriptServer::Step::reset()});
    write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    const QString plan = write("project.json", R"({"categories": ["Slope"],
        "subCategories": [{"category": "Slope", "name": "Soil moisture", "alias": "SM"}],
        "monitorings": [{"name": "VH", "category": "Slope"}], "groups": [],
        "files": [{"file": "a.csv", "monitoring": "VH", "subCategory": "SM"}]})");
    const Result result = rkmon.run({"point"_q, "import"_q, "--project-file"_q, plan});
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.messages,
              "rkmon: cannot create monitoring \"VH\": the connection to %1 broke before the answer was "
              "complete; the import can be repeated safely\n"_q.arg(server.baseAddress()));
    EXPECT_TRUE(server.isUsedUp());
}
