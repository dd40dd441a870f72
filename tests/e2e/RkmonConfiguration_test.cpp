#include "RkmonTest.h"
#include "Text.h"

#include <QDir>
#include <QFile>

// Where rkmon takes its settings from, and what it says of service, project and token.

namespace {

class RkmonConfiguration : public RkmonTest
{
protected:
    // Writes rkmon/config.ini, beside the token; nothing is set in the environment any more.
    void writeConfiguration(const QString& text)
    {
        for (const QString& variable : {"RKMON_BASE_API"_q, "RKMON_PROJECT"_q, "RKMON_TOKEN_FILE"_q}) {
            rkmon.removeVariable(variable);
        }
        QDir(rkmon.folder()).mkpath("rkmon"_q);
        QFile file(configurationFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("base-api = %1\ntoken-file = ../token\n"_q.arg(service().baseAddress()).toUtf8());
        file.write(text.toUtf8());
    }

    QString configurationFile() const { return rkmon.folder() + "/rkmon/config.ini"_q; }

    Result count(const QStringList& more = {}) const
    {
        return rkmon.run(QStringList{"monitoring"_q, "count"_q} + more);
    }
};

} // namespace

TEST_F(RkmonConfiguration, ProfilesChooseTheProject)
{
    created("VH"_q);
    writeConfiguration(
        "[profile north]\nproject = %1\n[profile south]\nproject = 000000000000000000000000\n"_q.arg(
            project));
    EXPECT_EQ(count().code, 2);
    EXPECT_EQ(count({"--profile"_q, "north"_q}).output, "1\n"_q);
    EXPECT_EQ(count({"--profile"_q, "south"_q}).code, 4);
    rkmon.setVariable("RKMON_PROFILE"_q, "north"_q);
    EXPECT_EQ(count().output, "1\n"_q);
    const Result unknown = count({"--profile"_q, "nort"_q});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_EQ(unknown.messages, "rkmon: there is no profile \"nort\" in %1; known are north, south\n"_q.arg(
                                    configurationFile()));
}

TEST_F(RkmonConfiguration, NamesTheLineThatIsNotUnderstood)
{
    writeConfiguration("# the site\nprojct = x\n"_q);
    const Result result = count();
    EXPECT_EQ(result.code, 2);
    EXPECT_TRUE(
        result.messages.startsWith("rkmon: %1:4: unknown setting \"projct\""_q.arg(configurationFile())))
        << result.messages.toStdString();
}

TEST_F(RkmonConfiguration, ProjectsAreListedAndShown)
{
    const QJsonArray projects = rkmon.run({"project"_q, "list"_q, "--json"_q}).array();
    ASSERT_EQ(projects.size(), 1); // those of other tests are not for this token
    const QJsonObject listed = projects.first().toObject();
    EXPECT_EQ(listed.keys(), (QStringList{"id"_q, "isInUse"_q, "name"_q, "timeZone"_q}));
    EXPECT_EQ(listed.value("id"_q).toString(), project);
    EXPECT_TRUE(listed.value("isInUse"_q).toBool());
    EXPECT_EQ(rkmon.run({"project"_q, "show"_q, "--json"_q}).object(), listed);
    const QString name = listed.value("name"_q).toString();
    EXPECT_EQ(rkmon.run({"project"_q, "show"_q, name, "--json"_q}).object(), listed);
    EXPECT_EQ(rkmon.run({"project"_q, "show"_q, "none"_q}).code, 4);
}

TEST_F(RkmonConfiguration, ProjectsGoByTheirNames)
{
    const QString name = "Pit %1 / \"North\""_q.arg(project);
    const auto makeProject = [&] {
        const QString made = service().createProject(name);
        service().admin({"grant"_q, "--token"_q, editor.id, "--project"_q, made, "--role"_q, "editor"_q});
        return made;
    };
    const QString pit = makeProject();
    const QStringList cells{"monitoring"_q, "ids"_q, "--csv"_q};
    const Result created = rkmon.run(
        {"monitoring"_q, "create"_q, "--name"_q, "VH"_q, "--category"_q, "Slope"_q, "--project"_q, name});
    EXPECT_EQ(created.code, 0) << created.messages.toStdString();
    EXPECT_EQ(rkmon.run(cells).output, "id,name\r\n"_q);
    EXPECT_EQ(rkmon.run(cells + QStringList{"--project"_q, pit}).output,
              "id,name\r\n%1,VH\r\n"_q.arg(created.output.trimmed()));
    EXPECT_EQ(rkmon.run({"__complete"_q, "--project"_q, "Pit"_q}).output, name + "\n"_q);

    rkmon.setVariable("RKMON_PROJECT"_q, name);
    EXPECT_EQ(count().output, "1\n"_q);
    EXPECT_EQ(rkmon.run({"project"_q, "show"_q, "--json"_q}).object().value("id"_q), pit);
    EXPECT_EQ(count({"--project"_q, "none"_q}).code, 4);

    // What belongs to a monitoring that is given by its identifier is read in the project all the same.
    for (const QStringList& command :
         {QStringList{"point"_q, "list"_q}, QStringList{"point"_q, "latest"_q},
          QStringList{"stats"_q, "normal"_q}, QStringList{"stats"_q, "depth"_q}}) {
        const QStringList ofCell = command + QStringList{"--cell"_q, created.output.trimmed(), "--json"_q};
        const Result identified = rkmon.run(ofCell + QStringList{"--project"_q, pit});
        const Result named = rkmon.run(ofCell);
        EXPECT_EQ(named.output, identified.output) << ofCell.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(named.messages, identified.messages);
        EXPECT_EQ(named.code, identified.code);
        rkmon.removeVariable("RKMON_PROJECT"_q);
        EXPECT_EQ(rkmon.run(ofCell).code, 2) << ofCell.join(QLatin1Char(' ')).toStdString();
        rkmon.setVariable("RKMON_PROJECT"_q, name);
    }

    const QString twin = makeProject();
    const Result ambiguous = count();
    EXPECT_EQ(ambiguous.code, 2);
    EXPECT_TRUE(ambiguous.messages.contains(pit) && ambiguous.messages.contains(twin))
        << ambiguous.messages.toStdString();
    // What needs no project goes on.
    EXPECT_EQ(rkmon.run({"project"_q, "list"_q, "--json"_q}).array().size(), 3);
    EXPECT_EQ(rkmon.run({"category"_q, "list"_q}).code, 0);
}

TEST_F(RkmonConfiguration, UseWritesTheProjectIntoItsProfile)
{
    writeConfiguration("\n# the north\n[profile north]\ndeadline = 9\n"_q);
    const Result byIdentifier = rkmon.run({"project"_q, "use"_q, project, "--profile"_q, "north"_q});
    EXPECT_EQ(byIdentifier.code, 0) << byIdentifier.messages.toStdString();
    EXPECT_EQ(byIdentifier.output, QString());
    QFile file(configurationFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString content = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(
        content.endsWith("\n# the north\n[profile north]\ndeadline = 9\nproject = %1\n"_q.arg(project)))
        << content.toStdString();
    EXPECT_EQ(count({"--profile"_q, "north"_q}).output, "0\n"_q);
    EXPECT_EQ(count().code, 2);
    EXPECT_EQ(rkmon.run({"project"_q, "use"_q, "none"_q}).code, 4);
}

TEST_F(RkmonConfiguration, UseByNameAndAmbiguousNames)
{
    const QString other = service().createProject("Shared %1"_q.arg(project));
    const QString twin = service().createProject("Shared %1"_q.arg(project));
    const auto grant = [&](const QString& to) {
        service().admin({"grant"_q, "--token"_q, editor.id, "--project"_q, to, "--role"_q, "editor"_q});
    };
    writeConfiguration(QString());
    grant(other);
    EXPECT_EQ(rkmon.run({"project"_q, "use"_q, "Shared %1"_q.arg(project)}).code, 0);
    EXPECT_EQ(count().output, "0\n"_q);
    grant(twin);
    const Result ambiguous = rkmon.run({"project"_q, "use"_q, "Shared %1"_q.arg(project)});
    EXPECT_EQ(ambiguous.code, 2);
    EXPECT_TRUE(ambiguous.messages.contains(other) && ambiguous.messages.contains(twin))
        << ambiguous.messages.toStdString();
    rkmon.setVariable("RKMON_PROJECT"_q, project);
    const Result shadowed = rkmon.run({"project"_q, "use"_q, other});
    EXPECT_EQ(shadowed.code, 0);
    EXPECT_TRUE(shadowed.messages.contains("warning: RKMON_PROJECT is set"_q));
}

TEST_F(RkmonConfiguration, WhoAmITellsRights)
{
    const MonitorService::Token writer = service().createTokenWithoutRights("Ben"_q);
    actAs(writer);
    const Result none = rkmon.run({"whoami"_q, "--json"_q});
    EXPECT_EQ(none.array().first().toObject().value("owner"_q).toString(), "Ben"_q);
    EXPECT_EQ(none.messages, "rkmon: the token has no rights\n"_q);
    service().admin({"grant"_q, "--token"_q, writer.id, "--project"_q, project, "--category"_q, "Slope"_q,
                     "--rights"_q, "read,create"_q});
    service().admin({"grant"_q, "--token"_q, writer.id, "--role"_q, "administrator"_q});
    const QJsonArray rights = rkmon.run({"whoami"_q, "--json"_q}).array();
    ASSERT_EQ(rights.size(), 2);
    QStringList projects;
    for (const QJsonValue& held : rights) {
        projects.append(held.toObject().value("projectId"_q).toString());
        const bool isOfProject = projects.last() == project;
        EXPECT_EQ(held.toObject().value("category"_q),
                  isOfProject ? QJsonValue("Slope"_q) : QJsonValue(QJsonValue::Null));
        EXPECT_EQ(held.toObject().value("rights"_q).toArray(),
                  isOfProject ? (QJsonArray{"read"_q, "create"_q}) : QJsonArray{"administer"_q});
    }
    EXPECT_TRUE(projects.contains(project));
    EXPECT_TRUE(rkmon.run({"whoami"_q}).output.contains("(whole service)"_q));
}

TEST_F(RkmonConfiguration, PingTellsTheServiceAndHowSoonItAnswers)
{
    const QJsonObject pinged = rkmon.run({"ping"_q, "--count"_q, "3"_q, "--json"_q}).object();
    EXPECT_EQ(pinged.value("address"_q).toString(), service().baseAddress());
    EXPECT_TRUE(pinged.value("extensions"_q).toArray().contains("projects"_q));
    EXPECT_EQ(pinged.value("requests"_q).toInt(), 3);
    const double least = pinged.value("leastMilliseconds"_q).toDouble();
    EXPECT_GT(least, 0.0);
    EXPECT_GE(pinged.value("medianMilliseconds"_q).toDouble(), least);
    rkmon.setVariable("RKMON_BASE_API"_q, "http://127.0.0.1:1/"_q);
    EXPECT_EQ(rkmon.run({"ping"_q}).code, 5);
}
