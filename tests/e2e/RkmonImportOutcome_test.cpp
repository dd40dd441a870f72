#include "Chance.h"
#include "DeploymentWithoutExtensions.h"
#include "RkmonTest.h"
#include "Text.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <tuple>

// What an import says became of its samples, and what a dry run says would.

namespace {

using monitorservice::test::Chance;

const QByteArray header = "name,depth,time,count,value\n";

class RkmonImportOutcome : public RkmonTest
{
protected:
    RkmonImportOutcome()
    {
        createSubCategory("Soil moisture"_q, "SM"_q);
        createSubCategory("Tilt"_q, "TI"_q);
        created("VH"_q);
    }

    void createSubCategory(const QString& name, const QString& alias) const
    {
        service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Slope"_q,
                         "--name"_q, name, "--alias"_q, alias});
    }

    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(QDir(rkmon.folder()).filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    Result import(const QStringList& more) const
    {
        return rkmon.run(QStringList{"point"_q, "import"_q, "--cell"_q, "VH"_q, "--json"_q} + more);
    }

    Result importMoisture(const QByteArray& rows, const QStringList& more = {}) const
    {
        return import(QStringList{"--sub-category"_q, "SM"_q, write("readings.csv", header + rows)} + more);
    }

    // A token that may do `rights` in the project.
    void actWithRights(const QString& rights)
    {
        const MonitorService::Token token = service().createTokenWithoutRights("Ben"_q);
        service().admin({"grant"_q, "--token"_q, token.id, "--project"_q, project, "--rights"_q, rights});
        actAs(token);
    }
};

QStringList linesOf(const QString& text)
{
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

TEST_F(RkmonImportOutcome, NamesNewPointsAndCorrectedValues)
{
    const Result first = importMoisture("W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                        "W1,20,2015-12-18T00:15:00-08:00,2,0.26\n");
    ASSERT_EQ(first.code, 0) << first.messages.toStdString();
    EXPECT_EQ(first.messages, QString());
    const QByteArray rows = "W1,20,2015-12-18T00:15:00-08:00,2,0.24\n"
                            "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                            "W2,,2015-12-18T00:15:00-08:00,1,7\n";
    const QString correction =
        "W1 at depth 20 at 2015-12-18 00:15:00 -08:00, count 2: 0.24 instead of 0.26\n"_q;

    const Result rehearsal = importMoisture(rows, {"--dry-run"_q});
    EXPECT_EQ(rehearsal.code, 0);
    EXPECT_EQ(rehearsal.messages,
              "rkmon: all rows are good; nothing was sent\nrkmon: would correct "_q + correction);
    const Result done = importMoisture(rows);
    EXPECT_EQ(done.messages, "rkmon: corrected "_q + correction);
    for (const Result& result : {rehearsal, done}) {
        const QJsonObject object = result.object();
        EXPECT_EQ(object.value("inserted"_q), 1);
        EXPECT_EQ(object.value("corrected"_q), 1);
        EXPECT_EQ(object.value("unchanged"_q), 1);
        EXPECT_EQ(object.value("newPoints"_q), 1);
        const QJsonObject point = object.value("newPointList"_q).toArray().at(0).toObject();
        EXPECT_EQ(point.value("name"_q), "W2"_q);
        EXPECT_EQ(point.value("depth"_q), QString());
        const QJsonArray corrections = object.value("corrections"_q).toArray();
        ASSERT_EQ(corrections.size(), 1);
        EXPECT_EQ(corrections[0].toObject(), (QJsonObject{{"name"_q, "W1"_q},
                                                          {"depth"_q, "20"_q},
                                                          {"time"_q, "2015-12-18T00:15:00.000-08:00"_q},
                                                          {"count"_q, 2},
                                                          {"oldValue"_q, 0.26},
                                                          {"value"_q, 0.24},
                                                          {"oldTimeFlag"_q, ""_q},
                                                          {"timeFlag"_q, ""_q}}));
    }
    EXPECT_EQ(rehearsal.object().value("sent"_q), false);
    EXPECT_EQ(done.object().value("sent"_q), true);
}

TEST_F(RkmonImportOutcome, ForPeopleNamesPointsAndHidesLists)
{
    const Result result = rkmon.run({"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q,
                                     write("a.csv", header + "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                                             "W1,30,2015-12-18T00:00:00-08:00,1,0.25\n"
                                                             "W2,,2015-12-18T00:00:00-08:00,1,0.25\n")});
    EXPECT_EQ(linesOf(result.output),
              (QStringList{"FILES       1"_q, "POINTS      3"_q, "NEW POINTS  3: W1, W2"_q, "SAMPLES     3"_q,
                           "INSERTED    3"_q, "CORRECTED   0"_q, "UNCHANGED   0"_q, "DELIVERIES  1"_q,
                           "ALARMS      0"_q, "SENT        yes"_q}));
}

// Whatever is held and whatever comes: the rehearsal says what the import then does, and both say what a
// table of samples says that knows nothing of either.
TEST_F(RkmonImportOutcome, OfADryRunIsThatOfTheImport)
{
    using Key = std::tuple<QString, QString, QString, int>; // sub-category, name, depth, slot
    struct Held
    {
        double value;
        QString flag;
    };
    std::map<Key, Held> held;
    std::set<std::tuple<QString, QString, QString>> points;
    Chance chance(20151218);
    const std::vector<QString> depths{QString(), "2.5"_q, "2.50"_q, "3"_q};
    const QDateTime begin(QDate(2015, 12, 18), QTime(0, 0), Qt::OffsetFromUTC, -8 * 3600);
    int corrections = 0;
    for (int round = 0; round < 12; ++round) {
        qint64 inserted = 0;
        qint64 corrected = 0;
        qint64 unchanged = 0;
        std::set<std::tuple<QString, QString, QString>> newPoints;
        std::map<Key, std::pair<Held, Held>> changed;
        std::map<Key, Held> brought; // a file says each once
        for (std::size_t row = 0, rows = 1 + chance.below(40); row < rows; ++row) {
            const QString depth = chance.of(depths);
            brought[{chance.of(std::vector<QString>{"SM"_q, "TI"_q}), "W%1"_q.arg(chance.below(3)),
                     depth == "2.50"_q ? "2.5"_q : depth, static_cast<int>(chance.below(6))}] = {
                static_cast<double>(chance.below(3)) / 10, chance.once(4) ? "A"_q : ""_q};
        }
        QByteArray text = "name,depth,time,count,value,timeFlag,subCategory\n";
        for (const auto& [key, sample] : brought) {
            const auto& [subCategory, name, depth, slot] = key;
            // Time in another offset and depth in another spelling are the same.
            const QDateTime time = begin.addSecs(900 * slot).toOffsetFromUtc(chance.once(2) ? 0 : 3600);
            const QString spelled = depth == "2.5"_q && chance.once(2) ? "2.50"_q : depth;
            text += "%1,%2,%3,%4,%5,%6,%7\n"_q.arg(name, spelled, time.toString(Qt::ISODateWithMs))
                        .arg(slot)
                        .arg(sample.value)
                        .arg(sample.flag, subCategory)
                        .toUtf8();
            const auto known = held.find(key);
            if (points.insert({subCategory, name, depth}).second) {
                newPoints.insert({subCategory, name, depth});
            }
            if (known == held.end()) {
                ++inserted;
            } else if (known->second.value == sample.value && known->second.flag == sample.flag) {
                ++unchanged;
            } else {
                ++corrected;
                changed[key] = {known->second, sample};
            }
            held[key] = sample;
        }
        const QString file = write("round.csv", text);
        const Result rehearsal = import({file, "--dry-run"_q});
        const Result done = import({file});
        for (const Result& result : {rehearsal, done}) {
            ASSERT_EQ(result.code, 0) << result.messages.toStdString();
            const QJsonObject object = result.object();
            EXPECT_EQ(object.value("inserted"_q), inserted) << round;
            EXPECT_EQ(object.value("corrected"_q), corrected) << round;
            EXPECT_EQ(object.value("unchanged"_q), unchanged) << round;
            EXPECT_EQ(object.value("newPointList"_q).toArray().size(), static_cast<int>(newPoints.size()));
            std::multiset<std::tuple<QString, QString, int, double, double, QString, QString>> expected;
            std::multiset<std::tuple<QString, QString, int, double, double, QString, QString>> told;
            for (const auto& [key, samples] : changed) {
                expected.insert({std::get<1>(key), std::get<2>(key), std::get<3>(key), samples.first.value,
                                 samples.second.value, samples.first.flag, samples.second.flag});
            }
            const QJsonArray list = object.value("corrections"_q).toArray();
            for (const QJsonValue& value : list) {
                const QJsonObject one = value.toObject();
                const QDateTime time = QDateTime::fromString(one["time"_q].toString(), Qt::ISODateWithMs);
                const int slot = one["count"_q].toInt();
                EXPECT_EQ(time, begin.addSecs(900 * slot));
                const QString depth = one["depth"_q].toString();
                told.insert({one["name"_q].toString(), depth == "2.50"_q ? "2.5"_q : depth, slot,
                             one["oldValue"_q].toDouble(), one["value"_q].toDouble(),
                             one["oldTimeFlag"_q].toString(), one["timeFlag"_q].toString()});
            }
            EXPECT_TRUE(told == expected) << round;
        }
        corrections += static_cast<int>(corrected);
    }
    EXPECT_GT(corrections, 20); // or it tested next to nothing
}

TEST_F(RkmonImportOutcome, CountsAReadingThatTwoFilesBringOnce)
{
    const QByteArray row = "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n";
    const QStringList files{"--sub-category"_q, "SM"_q, write("a.csv", header + row),
                            write("b.csv", header + row)};
    for (const QStringList& more : {QStringList{"--dry-run"_q}, QStringList{}}) {
        const QJsonObject result = import(files + more).object();
        EXPECT_EQ(result.value("samples"_q), 2);
        EXPECT_EQ(result.value("inserted"_q), 1);
        EXPECT_EQ(result.value("unchanged"_q), 1);
    }
}

TEST_F(RkmonImportOutcome, TellsMoreCorrectionsThanAnEntryOfTheTrailHolds)
{
    const auto rows = [](const char* value) {
        QByteArray text;
        const QDateTime begin(QDate(2015, 12, 18), QTime(0, 0), Qt::UTC);
        for (int i = 0; i < 1030; ++i) {
            text += "W1,20," + begin.addSecs(60 * i).toString(Qt::ISODate).toUtf8() + ',' +
                    QByteArray::number(i) + ',' + value + '\n';
        }
        return text;
    };
    ASSERT_EQ(importMoisture(rows("1")).code, 0);
    const Result rehearsal = importMoisture(rows("2"), {"--dry-run"_q});
    const Result done = importMoisture(rows("2"));
    for (const Result& result : {rehearsal, done}) {
        EXPECT_EQ(result.object().value("corrected"_q), 1030);
        EXPECT_EQ(result.object().value("corrections"_q).toArray().size(), 1000);
        EXPECT_TRUE(result.messages.endsWith("rkmon: and 1010 more corrections\n"_q));
    }
    EXPECT_EQ(done.object().value("corrections"_q), rehearsal.object().value("corrections"_q));
}

TEST_F(RkmonImportOutcome, NamesAlarmsAndTheirPoints)
{
    ASSERT_EQ(rkmon
                  .run({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--name"_q,
                        "Probes"_q, "--point"_q, "W1"_q, "--point"_q, "W2"_q, "--total-limit"_q, "1"_q})
                  .code,
              0);
    const Result result = importMoisture("W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                                         "W1,20,2015-12-19T00:00:00-08:00,2,1.5\n"
                                         "W2,,2015-12-18T00:00:00-08:00,1,0.25\n"
                                         "W2,,2015-12-19T00:00:00-08:00,2,1.5\n"
                                         "W3,,2015-12-19T00:00:00-08:00,2,15\n");
    EXPECT_EQ(result.code, 0);
    const QJsonArray alarms = rkmon.run({"alarm"_q, "list"_q, "--json"_q}).array();
    ASSERT_EQ(alarms.size(), 1);
    const QString alarm = alarms[0].toObject().value("id"_q).toString();
    EXPECT_EQ(result.object().value("alarms"_q), QJsonArray{alarm});
    EXPECT_EQ(result.messages,
              "rkmon: beyond a limit: W1, W2; rkmon alarm detail %1 tells more\n"_q.arg(alarm));
    EXPECT_TRUE(importMoisture("W1,20,2015-12-19T00:00:00-08:00,2,1.5\n")
                    .object()
                    .value("alarms"_q)
                    .toArray()
                    .isEmpty());
}

TEST_F(RkmonImportOutcome, DryRunSaysWhatTheTokenMayNot)
{
    const QByteArray rows = "W1,20,2015-12-18T00:00:00-08:00,1,0.25\n";
    const QByteArray corrected = "W1,20,2015-12-18T00:00:00-08:00,1,0.5\n";
    ASSERT_EQ(importMoisture(rows).code, 0);

    actAs(reader);
    const Result refused = importMoisture(rows, {"--dry-run"_q});
    EXPECT_EQ(refused.code, 3);
    EXPECT_EQ(refused.object().value("unchanged"_q), 1);
    EXPECT_TRUE(
        refused.messages.endsWith("rkmon: the token may not create data of category \"Slope\": the service "
                                  "would refuse this import\n"_q))
        << refused.messages.toStdString();
    EXPECT_EQ(importMoisture(rows).code, 3);

    actWithRights("read,create"_q);
    EXPECT_EQ(importMoisture(rows, {"--dry-run"_q}).code, 0);
    const Result unedited = importMoisture(corrected, {"--dry-run"_q});
    EXPECT_EQ(unedited.code, 3);
    EXPECT_TRUE(
        unedited.messages.endsWith("the token may not edit data of category \"Slope\": the service would "
                                   "refuse the corrections of samples that it holds\n"_q));
    EXPECT_EQ(importMoisture(corrected).code, 3);
    EXPECT_EQ(importMoisture(rows).code, 0);
}

TEST_F(RkmonImportOutcome, WhereTheServiceTellsNothingADryRunComparesAllTheSame)
{
    DeploymentWithoutExtensions deployment(service().baseAddress());
    rkmon.configure(deployment.baseAddress(), project, editor.text);
    const Result first = importMoisture("W1,20,2015-12-18T00:00:00-08:00,1,0.25\n");
    EXPECT_EQ(first.code, 0);
    EXPECT_TRUE(first.object().value("inserted"_q).isNull());
    EXPECT_EQ(first.object().value("newPoints"_q), 1);
    EXPECT_EQ(first.messages, "rkmon: the service does not tell what became of the samples\n"_q);

    const Result rehearsal = importMoisture("W1,20,2015-12-18T00:00:00-08:00,1,0.5\n"
                                            "W1,20,2015-12-18T01:00:00-08:00,2,0.5\n",
                                            {"--dry-run"_q});
    EXPECT_EQ(rehearsal.object().value("inserted"_q), 1);
    EXPECT_EQ(rehearsal.object().value("corrected"_q), 1);
    EXPECT_EQ(rehearsal.object().value("newPoints"_q), 0);
}
