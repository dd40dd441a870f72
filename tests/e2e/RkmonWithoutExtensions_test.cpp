#include "DeploymentWithoutExtensions.h"
#include "RkmonTest.h"
#include "Text.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

// The commands of rkmon against a deployment that can nothing beyond what every one can.

namespace {

class RkmonWithoutExtensions : public RkmonTest
{
protected:
    RkmonWithoutExtensions()
    {
        service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, "Slope"_q,
                         "--name"_q, "Soil moisture"_q, "--alias"_q, "SM"_q});
        rkmon.configure(deployment.baseAddress(), project, editor.text);
    }

    QString fileOf(const QByteArray& rows) const
    {
        QFile file(QDir(rkmon.folder()).filePath("readings.csv"_q));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("name,depth,time,count,value\n" + rows);
        return file.fileName();
    }

    // What a command that must succeed gives, each time through the deployment.
    QJsonArray listed(const QStringList& arguments)
    {
        const int before = deployment.passedOn();
        const Result result = rkmon.run(arguments + QStringList{"--json"_q});
        EXPECT_EQ(result.code, 0) << arguments.join(QLatin1Char(' ')).toStdString() << ": "
                                  << result.messages.toStdString();
        EXPECT_GT(deployment.passedOn(), before);
        return result.array();
    }

    static QString member(const QJsonArray& rows, const QString& name)
    {
        return rows.isEmpty() ? QString() : rows.first().toObject().value(name).toString();
    }

    DeploymentWithoutExtensions deployment{service().baseAddress()};
};

} // namespace

TEST_F(RkmonWithoutExtensions, ImportsReadsAndShowsAlarms)
{
    const QString cell = created("VH"_q);
    EXPECT_EQ(member(listed({"monitoring"_q, "list"_q}), "name"_q), "VH"_q);
    EXPECT_EQ(member(listed({"subcategory"_q, "list"_q, "Slope"_q}), "alias"_q), "SM"_q);
    const Result group = rkmon.run({"group"_q, "create"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q,
                                    "--name"_q, "Probes"_q, "--point"_q, "W1"_q, "--total-limit"_q, "1"_q});
    EXPECT_EQ(group.code, 0) << group.messages.toStdString();
    EXPECT_EQ(member(listed({"group"_q, "list"_q, "--cell"_q, cell}), "id"_q), group.output.trimmed());

    const Result imported =
        rkmon.run({"point"_q, "import"_q, "--cell"_q, "VH"_q, "--sub-category"_q, "SM"_q, "--json"_q,
                   fileOf("W1,20,2015-12-18T00:00:00-08:00,1,0.25\n"
                          "W1,20,2015-12-19T00:00:00-08:00,2,1.5\n")});
    EXPECT_EQ(imported.code, 0) << imported.messages.toStdString();
    EXPECT_EQ(imported.object().value("newPoints"_q), 1);
    EXPECT_EQ(listed({"point"_q, "list"_q, "--cell"_q, "VH"_q, "--samples"_q}).size(), 2);
    EXPECT_EQ(listed({"stats"_q, "normal"_q, "--cell"_q, "VH"_q}).size(), 2);
    const QString data = member(listed({"data"_q, "list"_q}), "id"_q);
    EXPECT_EQ(listed({"data"_q, "history"_q, data}).size(), 1);

    const QString alarm = member(listed({"alarm"_q, "list"_q}), "id"_q);
    EXPECT_FALSE(alarm.isEmpty());
    EXPECT_EQ(member(listed({"alarm"_q, "detail"_q, alarm}), "totalVar"_q), "1.25"_q);
}

TEST_F(RkmonWithoutExtensions, SaysWhatTheServiceCannotTell)
{
    EXPECT_EQ(rkmon.run({"ping"_q}).code, 0);
    for (const QStringList& command : {QStringList{"whoami"_q}, QStringList{"project"_q, "list"_q},
                                       QStringList{"alarm"_q, "list"_q, "--open"_q}}) {
        const Result result = rkmon.run(command);
        EXPECT_EQ(result.code, 1);
        EXPECT_THAT(result.messages.toStdString(), testing::HasSubstr("is not among its extensions"));
    }
    rkmon.removeVariable("RKMON_PROJECT"_q);
    EXPECT_EQ(rkmon.run({"project"_q, "use"_q, project}).code, 0);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "count"_q}).output, "0\n"_q);
    const Result named = rkmon.run({"monitoring"_q, "count"_q, "--project"_q, "Coastal bluff"_q});
    EXPECT_EQ(named.code, 2);
    EXPECT_THAT(named.messages.toStdString(),
                testing::StartsWith(
                    "rkmon: \"Coastal bluff\" is not the identifier of a project, and the service at "));
}
