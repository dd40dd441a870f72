#include "DeploymentWithoutExtensions.h"
#include "RkmonTest.h"
#include "Text.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

// Taking back and setting right: references, points, samples, deliveries, and the trail of it all.

namespace {

class RkmonChanges : public RkmonTest
{
protected:
    RkmonChanges()
    {
        service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Slope"_q,
                         "--name"_q, "Soil moisture"_q, "--alias"_q, "SM"_q, "--unit"_q, "V"_q,
                         "--decimals"_q, "3"_q});
        cell = created("VH"_q);
        deliver("W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                "W1,20,2015-12-19T00:00:00-08:00,2,1.5\n"
                "W1,20,2015-12-20T00:00:00-08:00,3,9.5\n"
                "W1,40,2015-12-18T00:00:00-08:00,1,0.75\n");
    }

    void deliver(const QByteArray& rows) const
    {
        QFile file(QDir(rkmon.folder()).filePath("readings.csv"_q));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("name,depth,time,count,value\n" + rows);
        file.close();
        const Result result = rkmon.run(
            {"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, file.fileName()});
        ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    }

    int sampleCount() const
    {
        return rkmon.run({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q, "--json"_q}).array().size();
    }

    QJsonArray points() const
    {
        return rkmon.run({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--json"_q}).array();
    }

    QString cell;
};

const QStringList upper{"W1"_q, "--cell"_q, "VH"_q, "--depth"_q, "20.0"_q};

} // namespace

TEST_F(RkmonChanges, ReferenceIsShownAndChanged)
{
    const QStringList command = QStringList{"point"_q, "reference"_q} + upper;
    const QJsonObject shown = rkmon.run(command + QStringList{"--json"_q}).object();
    EXPECT_EQ(shown.value("initialValue"_q), 0.25);
    EXPECT_EQ(shown.value("reference"_q), 0.25);
    EXPECT_EQ(shown.value("unit"_q), "V"_q);
    EXPECT_TRUE(rkmon.run(command).output.contains("REFERENCE      0.250\n"_q));

    EXPECT_EQ(rkmon.run(command + QStringList{"--set"_q, "0"_q}).code, 2); // nobody can be asked
    EXPECT_EQ(rkmon.run(command + QStringList{"--json"_q}).object(), shown);
    const QJsonObject set =
        rkmon.run(command + QStringList{"--set"_q, "0"_q, "--yes"_q, "--json"_q}).object();
    EXPECT_EQ(set.value("initialValue"_q), 0.0);
    EXPECT_EQ(set.value("reference"_q), 0.0);
    const QString id = shown.value("id"_q).toString();
    const QJsonObject cleared =
        rkmon.run({"point"_q, "reference"_q, id, "--clear"_q, "-y"_q, "--json"_q}).object();
    EXPECT_TRUE(cleared.value("initialValue"_q).isNull());
    EXPECT_EQ(cleared.value("reference"_q), 0.25);
    EXPECT_EQ(rkmon.run({"point"_q, "reference"_q, id, "--clear"_q}).messages,
              "rkmon: nothing to change\n"_q);
    EXPECT_EQ(rkmon.run({"point"_q, "reference"_q, id, "--clear"_q, "--set"_q, "1"_q}).code, 2);
}

TEST_F(RkmonChanges, PointsThatCannotBeToldApartAreListed)
{
    const Result ambiguous = rkmon.run({"point"_q, "reference"_q, "--name"_q, "W1"_q, "--cell"_q, "VH"_q});
    EXPECT_EQ(ambiguous.code, 2);
    EXPECT_THAT(ambiguous.messages.toStdString(),
                testing::AllOf(testing::HasSubstr("(W1 at depth 20 of VH, Soil moisture)"),
                               testing::HasSubstr("(W1 at depth 40 of VH, Soil moisture)")));
    EXPECT_EQ(rkmon.run({"point"_q, "reference"_q}).code, 2);
    EXPECT_EQ(rkmon.run({"point"_q, "reference"_q, "W9"_q}).code, 4);
    EXPECT_EQ(rkmon.run({"point"_q, "reference"_q, "000000000000000000000000"_q}).code, 4);
}

TEST_F(RkmonChanges, PointIsDeletedWithItsSamples)
{
    EXPECT_EQ(rkmon.run(QStringList{"point"_q, "delete"_q} + upper).code, 2); // nobody can be asked
    const Result done = rkmon.run(QStringList{"point"_q, "delete"_q, "--yes"_q} + upper);
    EXPECT_EQ(done.code, 0) << done.messages.toStdString();
    EXPECT_THAT(
        done.messages.toStdString(),
        testing::MatchesRegex("rkmon: deleted point W1 at depth 20 \\([0-9a-f]+\\) with 3 samples; .*\n"));
    ASSERT_EQ(points().size(), 1);
    EXPECT_EQ(points().first().toObject().value("depth"_q), "40"_q);
}

TEST_F(RkmonChanges, SamplesAreDeletedByCondition)
{
    const auto remove = [&](const QStringList& condition) {
        return rkmon.run(QStringList{"sample"_q, "delete"_q, "--yes"_q} + upper + condition);
    };
    EXPECT_EQ(remove({}).code, 2);
    EXPECT_EQ(remove({"--count"_q, "9"_q}).code, 4);
    EXPECT_EQ(remove({"--since"_q, "2015-12-20T00:00:00-08:00"_q, "--below"_q, "9"_q}).code, 4);
    EXPECT_EQ(sampleCount(), 4);
    const Result done = remove({"--above"_q, "9"_q, "--since"_q, "2015-12-19"_q});
    EXPECT_EQ(done.code, 0) << done.messages.toStdString();
    EXPECT_TRUE(done.messages.startsWith("rkmon: deleted 1 of the 3 samples of point W1 at depth 20"_q))
        << done.messages.toStdString();
    EXPECT_EQ(remove({"--time"_q, "2015-12-18T09:00:00+01:00"_q, "--count"_q, "1"_q}).code, 0);
    EXPECT_EQ(remove({"--value"_q, "1.5"_q}).code, 0);
    EXPECT_EQ(sampleCount(), 1);
}

TEST_F(RkmonChanges, LatestDeliveryIsTakenBack)
{
    deliver("W1,20,2015-12-20T00:00:00-08:00,3,2.5\n"
            "W2,,2015-12-20T00:00:00-08:00,1,1\n");
    EXPECT_EQ(points().size(), 3);
    EXPECT_EQ(rkmon.run({"data"_q, "undo"_q, "--cell"_q, "VH"_q}).code, 2);
    const Result undone = rkmon.run(
        {"data"_q, "undo"_q, "--yes"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--json"_q});
    EXPECT_EQ(undone.code, 0) << undone.messages.toStdString();
    EXPECT_EQ(undone.object().value("removed"_q), 1);
    EXPECT_EQ(undone.object().value("restored"_q), 1);
    EXPECT_EQ(undone.object().value("removedPoints"_q), 1);
    EXPECT_EQ(points().size(), 2);
    const QString data =
        rkmon.run({"data"_q, "list"_q, "--json"_q}).array().first().toObject().value("id"_q).toString();
    EXPECT_EQ(rkmon.run({"data"_q, "undo"_q, "--yes"_q, data}).code, 0);
    EXPECT_EQ(rkmon.run({"data"_q, "undo"_q, "--yes"_q, "--cell"_q, "VH"_q}).code, 4);
    EXPECT_EQ(rkmon.run({"data"_q, "undo"_q, "--yes"_q}).code, 2);
}

TEST_F(RkmonChanges, PercentOfADailyLimitHasTwoDigits)
{
    const Result made =
        rkmon.run({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--name"_q,
                   "Probes"_q, "--point"_q, "W1"_q, "--daily-in"_q, "percent"_q, "--daily-limit"_q, "10"_q});
    ASSERT_EQ(made.code, 0) << made.messages.toStdString();
    deliver("W1,20,2015-12-21T00:00:00-08:00,4,9.75\n"); // 0.25 more, which is all of the reference
    const QJsonArray alarms = rkmon.run({"alarm"_q, "list"_q, "--json"_q}).array();
    ASSERT_EQ(alarms.size(), 1);
    const QStringList command{"alarm"_q, "detail"_q, alarms.first().toObject().value("id"_q).toString()};
    const QString shown = rkmon.run(command).output;
    EXPECT_TRUE(shown.contains(" 90.00 %"_q)) << shown.toStdString();
    const QJsonObject detail = rkmon.run(command + QStringList{"--json"_q}).array().first().toObject();
    EXPECT_EQ(detail.value("dayBeyound"_q), 90);
}

TEST_F(RkmonChanges, TrailTellsWhoChangedWhat)
{
    rkmon.run(QStringList{"point"_q, "reference"_q, "--yes"_q, "--set"_q, "0.5"_q} + upper);
    rkmon.run({"monitoring"_q, "update"_q, "VH"_q, "--name"_q, "VH upper"_q});
    const auto listed = [&](const QStringList& more) {
        const Result result = rkmon.run(QStringList{"changes"_q, "--json"_q} + more);
        EXPECT_EQ(result.code, 0) << result.messages.toStdString();
        return result.array();
    };
    const QJsonObject latest = listed({}).first().toObject();
    EXPECT_EQ(latest.value("action"_q), "cell.changed"_q);
    EXPECT_EQ(latest.value("author"_q), "Ana"_q);
    EXPECT_EQ(latest.value("subject"_q), cell);
    EXPECT_EQ(latest.value("changed"_q).toArray(), QJsonArray{"name: \"VH\" → \"VH upper\""_q});
    EXPECT_EQ(latest.value("after"_q).toObject().value("name"_q), "VH upper"_q);

    EXPECT_EQ(listed({"--action"_q, "^initialValue"_q}).size(), 1);
    EXPECT_EQ(listed({"--cell"_q, "VH upper"_q, "--by"_q, "Ana"_q, "--action"_q, "^cell"_q}).size(), 2);
    EXPECT_EQ(listed({"--by"_q, "nobody"_q}).size(), 0);
    EXPECT_EQ(listed({"--subject"_q, cell, "--category"_q, "Slope"_q, "--since"_q, "2020-01-01"_q}).size(),
              2);
    EXPECT_EQ(listed({"--until"_q, "2020-01-01"_q}).size(), 0);
    const Result page = rkmon.run({"changes"_q, "--limit"_q, "1"_q});
    EXPECT_TRUE(page.messages.contains("--skip 1 continues"_q)) << page.messages.toStdString();
    EXPECT_EQ(page.output.count(QLatin1Char('\n')), 2);
}

TEST_F(RkmonChanges, ServiceThatCannotDoItIsNamed)
{
    DeploymentWithoutExtensions deployment(service().baseAddress());
    rkmon.configure(deployment.baseAddress(), project, editor.text);
    for (const QStringList& command :
         {QStringList{"point"_q, "reference"_q} + upper,
          QStringList{"point"_q, "delete"_q, "--yes"_q} + upper,
          QStringList{"sample"_q, "delete"_q, "--yes"_q, "--count"_q, "1"_q} + upper,
          QStringList{"data"_q, "undo"_q, "--yes"_q, "--cell"_q, "VH"_q}, QStringList{"changes"_q}}) {
        const Result result = rkmon.run(command);
        EXPECT_EQ(result.code, 1);
        EXPECT_THAT(result.messages.toStdString(), testing::HasSubstr("is not among its extensions"));
    }
    EXPECT_EQ(sampleCount(), 4);
}

#ifdef Q_OS_UNIX
TEST_F(RkmonChanges, AsksWithWhatItWouldDo)
{
    const auto asked = [&](const QStringList& command) {
        return rkmon.runOnTerminal(command, 80, "n\n").output.toStdString();
    };
    using testing::StartsWith;
    EXPECT_THAT(asked(QStringList{"sample"_q, "delete"_q, "--above"_q, "1"_q} + upper),
                StartsWith("Delete 2 of the 3 samples of point W1 at depth 20 ("));
    EXPECT_THAT(asked(QStringList{"point"_q, "delete"_q} + upper),
                StartsWith("Delete point W1 at depth 20 ("));
    EXPECT_THAT(asked(QStringList{"point"_q, "reference"_q, "--set"_q, "0.3"_q} + upper),
                testing::AllOf(StartsWith("Count the variations of all 3 samples of point W1 at depth 20 ("),
                               testing::HasSubstr(" of \"VH\" from 0.3, and judge them anew? [y/N]")));
    EXPECT_THAT(asked(QStringList{"point"_q, "reference"_q, "--clear"_q} + upper),
                testing::HasSubstr(" from the earliest reading, "));
    const QStringList reference = QStringList{"point"_q, "reference"_q, "--json"_q} + upper;
    EXPECT_EQ(rkmon.run(reference).object().value("initialValue"_q), 0.25);
    EXPECT_THAT(asked({"data"_q, "undo"_q, "--cell"_q, "VH"_q}),
                testing::AllOf(StartsWith("Take back delivery 1 of "),
                               testing::HasSubstr("4 samples inserted, 0 corrected, in Soil moisture of "
                                                  "\"VH\"? [y/N]")));
    EXPECT_EQ(sampleCount(), 4);
}
#endif
