#include "RkmonTest.h"
#include "Text.h"

#include <QDateTime>
#include <QTimeZone>

#include <gmock/gmock.h>

// What each command of rkmon does against the real service.

namespace {

class RkmonCommands : public RkmonTest
{
protected:
    QStringList namesListed(const QStringList& more) const
    {
        const Result result = rkmon.run(QStringList{"monitoring"_q, "list"_q, "--json"_q} + more);
        EXPECT_EQ(result.code, 0) << result.messages.toStdString();
        QStringList names;
        for (const QJsonValue& monitoring : result.array()) {
            names.append(monitoring.toObject().value("name"_q).toString());
        }
        return names;
    }

    QString counted(const QStringList& more) const
    {
        const Result result = rkmon.run(QStringList{"monitoring"_q, "count"_q} + more);
        EXPECT_EQ(result.code, 0) << result.messages.toStdString();
        return result.output;
    }
};

} // namespace

TEST_F(RkmonCommands, CreatePrintsTheIdentifierAlone)
{
    const Result result =
        rkmon.run({"monitoring"_q, "create"_q, "--name"_q, "VH"_q, "--category"_q, "Slope"_q});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.messages, QString());
    EXPECT_THAT(result.output.toStdString(), testing::MatchesRegex("[0-9a-f]{24}\n"));
}

TEST_F(RkmonCommands, ShowTellsWhatWasCreated)
{
    const QString id =
        created("[边坡,\"1\"]"_q, "Slope"_q, {"--model"_q, "m 1"_q, "--alarm-to"_q, "ana, ben"_q});
    const Result result = rkmon.run({"monitoring"_q, "show"_q, id, "--json"_q});
    ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    const QJsonObject shown = result.object();
    EXPECT_EQ(shown.keys(), (QStringList{"alarmTo"_q, "category"_q, "createdAt"_q, "createdBy"_q, "id"_q,
                                         "modelId"_q, "name"_q, "updatedAt"_q, "updatedBy"_q}));
    EXPECT_EQ(shown.value("id"_q).toString(), id);
    EXPECT_EQ(shown.value("name"_q).toString(), "[边坡,\"1\"]"_q);
    EXPECT_EQ(shown.value("category"_q).toString(), "Slope"_q);
    EXPECT_EQ(shown.value("modelId"_q).toString(), "m 1"_q);
    EXPECT_EQ(shown.value("alarmTo"_q).toArray(), (QJsonArray{"ana"_q, "ben"_q}));
    EXPECT_EQ(shown.value("createdBy"_q).toString(), "Ana"_q);
    EXPECT_THAT(shown.value("createdAt"_q).toString().toStdString(),
                testing::MatchesRegex("[0-9-]+T[0-9:.]+Z"));
}

TEST_F(RkmonCommands, UpdateChangesWhatIsGiven)
{
    const QString id = created("VH"_q, "Slope"_q, {"--alarm-to"_q, "ana"_q});
    const Result renamed = rkmon.run({"monitoring"_q, "update"_q, id, "--name"_q, "VH upper"_q, "--json"_q});
    ASSERT_EQ(renamed.code, 0) << renamed.messages.toStdString();
    EXPECT_EQ(renamed.messages, QString());
    EXPECT_EQ(renamed.object().value("name"_q).toString(), "VH upper"_q);
    EXPECT_EQ(renamed.object().value("alarmTo"_q).toArray(), QJsonArray{"ana"_q});

    const Result moved = rkmon.run({"monitoring"_q, "update"_q, id, "--category"_q, "Pit"_q, "--model"_q,
                                    "m1"_q, "--no-alarm-to"_q, "--json"_q});
    ASSERT_EQ(moved.code, 0) << moved.messages.toStdString();
    const QJsonObject shown = rkmon.run({"monitoring"_q, "show"_q, id, "--json"_q}).object();
    EXPECT_EQ(shown, moved.object());
    EXPECT_EQ(shown.value("category"_q).toString(), "Pit"_q);
    EXPECT_EQ(shown.value("modelId"_q).toString(), "m1"_q);
    EXPECT_EQ(shown.value("alarmTo"_q).toArray(), QJsonArray());
    EXPECT_EQ(shown.value("name"_q).toString(), "VH upper"_q);
}

TEST_F(RkmonCommands, UpdateSaysWhenThereIsNothingToChange)
{
    const QString id = created("VH"_q);
    const QJsonObject before = rkmon.run({"monitoring"_q, "show"_q, id, "--json"_q}).object();
    const Result result = rkmon.run({"monitoring"_q, "update"_q, id, "--name"_q, "VH"_q, "--json"_q});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.messages, "rkmon: nothing to change\n"_q);
    EXPECT_EQ(result.object(), before);
}

TEST_F(RkmonCommands, DeleteNeedsConfirmation)
{
    const QString id = created("VH"_q);
    const Result refused = rkmon.run({"monitoring"_q, "delete"_q, id});
    EXPECT_EQ(refused.code, 2);
    EXPECT_TRUE(refused.messages.contains("--yes"_q)) << refused.messages.toStdString();
    EXPECT_EQ(counted({}), "1\n"_q);

    const Result done = rkmon.run({"monitoring"_q, "delete"_q, "--yes"_q, id});
    EXPECT_EQ(done.code, 0) << done.messages.toStdString();
    EXPECT_EQ(done.output, QString());
    EXPECT_EQ(done.messages, "rkmon: deleted monitoring %1\n"_q.arg(id));
    EXPECT_EQ(counted({}), "0\n"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "delete"_q, "--yes"_q, id}).code, 4);
}

TEST_F(RkmonCommands, NamesInTheOrderAsked)
{
    const QString first = created("VH"_q);
    const QString second = created("LS-a"_q);
    const Result result = rkmon.run({"monitoring"_q, "name"_q, second, first, second});
    EXPECT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_EQ(result.output, "LS-a\nVH\nLS-a\n"_q);

    const Result json = rkmon.run({"monitoring"_q, "name"_q, second, "--json"_q});
    EXPECT_EQ(json.array(), (QJsonArray{QJsonObject{{"id"_q, second}, {"name"_q, "LS-a"_q}}}));

    const Result unknown = rkmon.run({"monitoring"_q, "name"_q, first, "000000000000000000000000"_q});
    EXPECT_EQ(unknown.code, 4);
    EXPECT_EQ(unknown.output, QString());
}

TEST_F(RkmonCommands, IdentifiersOfAll)
{
    const QString first = created("VH"_q);
    const QString second = created("a,b"_q);
    const Result result = rkmon.run({"monitoring"_q, "ids"_q, "--csv"_q});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.output, "id,name\r\n%1,VH\r\n%2,\"a,b\"\r\n"_q.arg(first, second));
}

TEST_F(RkmonCommands, ListsAndCountsByCondition)
{
    created("VH"_q);
    created("LS-a"_q);
    created("LS-b"_q, "Pit"_q, {"--model"_q, "m1"_q});
    EXPECT_EQ(namesListed({}), (QStringList{"VH"_q, "LS-a"_q, "LS-b"_q}));
    EXPECT_EQ(namesListed({"--name"_q, "^ls-"_q}), (QStringList{"LS-a"_q, "LS-b"_q}));
    EXPECT_EQ(namesListed({"--exact-name"_q, "LS-a"_q}), QStringList{"LS-a"_q});
    EXPECT_EQ(namesListed({"--exact-name"_q, "ls-a"_q}), QStringList());
    EXPECT_EQ(namesListed({"--model"_q, "m1"_q}), QStringList{"LS-b"_q});
    EXPECT_EQ(namesListed({"--name"_q, "LS"_q, "--model"_q, "m1"_q}), QStringList{"LS-b"_q});
    EXPECT_EQ(counted({}), "3\n"_q);
    EXPECT_EQ(counted({"--name"_q, "^ls-"_q}), "2\n"_q);
    EXPECT_EQ(counted({"--csv"_q, "--exact-name"_q, "VH"_q}), "count\r\n1\r\n"_q);
}

TEST_F(RkmonCommands, ConditionsMeanWhatWasTyped)
{
    const QStringList names{"5%1"_q,         "5%2"_q, "501"_q, "5%L1 & \"x\""_q, "a+b c?d=e#f/g\\h"_q,
                            "склон 边坡 😀"_q};
    for (const QString& name : names) {
        created(name);
    }
    for (const QString& name : names) {
        EXPECT_EQ(namesListed({"--exact-name"_q, name}), QStringList{name});
        EXPECT_EQ(counted({"--exact-name"_q, name}), "1\n"_q);
    }
    // Nothing of the pattern is taken for a place in the address that skip or limit go to.
    EXPECT_EQ(namesListed({"--name"_q, "5%1"_q, "--skip"_q, "0"_q}), QStringList{"5%1"_q});
    EXPECT_EQ(namesListed({"--name"_q, "5%[12]"_q}), (QStringList{"5%1"_q, "5%2"_q}));
    EXPECT_EQ(counted({"--name"_q, "5%1"_q}), "1\n"_q);
}

TEST_F(RkmonCommands, ListsByTimeOfCreation)
{
    const QString id = created("VH"_q);
    const QString createdAt =
        rkmon.run({"monitoring"_q, "show"_q, id, "--json"_q}).object().value("createdAt"_q).toString();
    // Days are the project's: for hours of each day that of UTC is the next one already.
    const QTimeZone zone("America/Los_Angeles");
    const QString day =
        QDateTime::fromString(createdAt, Qt::ISODateWithMs).toTimeZone(zone).date().toString(Qt::ISODate);
    EXPECT_EQ(counted({"--since"_q, day, "--until"_q, day}), "1\n"_q);
    EXPECT_EQ(counted({"--since"_q, day}), "1\n"_q);
    EXPECT_EQ(counted({"--until"_q, day}), "1\n"_q);
    EXPECT_EQ(counted({"--until"_q, "2001-01-01"_q}), "0\n"_q);
    EXPECT_EQ(counted({"--since"_q, "2199-01-01T00:00:00+01:00"_q}), "0\n"_q);
}

TEST_F(RkmonCommands, PagesAndSaysWhatIsLeft)
{
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        created(QString::fromUtf8(name));
    }
    const Result page =
        rkmon.run({"monitoring"_q, "list"_q, "--skip"_q, "1"_q, "--limit"_q, "2"_q, "--json"_q});
    EXPECT_EQ(page.array().size(), 2);
    EXPECT_EQ(page.array().first().toObject().value("name"_q).toString(), "b"_q);
    EXPECT_EQ(page.messages, "rkmon: 2 of 5 shown; --skip 3 continues, --all shows everything\n"_q);

    const Result last =
        rkmon.run({"monitoring"_q, "list"_q, "--skip"_q, "3"_q, "--limit"_q, "2"_q, "--json"_q});
    EXPECT_EQ(last.array().size(), 2);
    EXPECT_EQ(last.messages, QString());
    EXPECT_EQ(namesListed({"--all"_q}).size(), 5);
}

TEST_F(RkmonCommands, Categories)
{
    const Result result = rkmon.run({"category"_q});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.output, categories().join(QLatin1Char('\n')) + QLatin1Char('\n'));
    EXPECT_EQ(rkmon.run({"category"_q, "list"_q}).output, result.output);
    EXPECT_EQ(rkmon.run({"category"_q, "--json"_q}).array(), QJsonArray::fromStringList(categories()));

    rkmon.removeVariable("RKMON_PROJECT"_q);
    EXPECT_EQ(rkmon.run({"category"_q}).code, 0); // of no project
}

TEST_F(RkmonCommands, SubCategories)
{
    const auto add = [&](const QString& category, const QString& name) {
        return service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, category,
                                "--name"_q, name, "--alias"_q, name.left(1)});
    };
    const QString rain = add("Slope"_q, "Rain"_q);
    add("Slope"_q, "Moisture"_q);
    add("Pit"_q, "Settlement"_q);

    EXPECT_EQ(rkmon.run({"subcategory"_q, "list"_q, "--json"_q}).array().size(), 3);
    const Result ofSlope = rkmon.run({"subcategory"_q, "list"_q, "Slope"_q, "--csv"_q});
    EXPECT_EQ(ofSlope.code, 0);
    EXPECT_EQ(ofSlope.output.count("\r\n"_q), 3);
    EXPECT_EQ(rkmon.run({"subcategory"_q, "list"_q, "none"_q, "--json"_q}).array(), QJsonArray());

    const Result shown = rkmon.run({"subcategory"_q, "show"_q, rain, "--json"_q});
    EXPECT_EQ(
        shown.object(),
        (QJsonObject{{"id"_q, rain}, {"name"_q, "Rain"_q}, {"category"_q, "Slope"_q}, {"alias"_q, "R"_q}}));
    EXPECT_EQ(rkmon.run({"subcategory"_q, "show"_q, "000000000000000000000000"_q}).code, 4);
}

TEST_F(RkmonCommands, CanTellsPermissionsApart)
{
    for (const char* action : {"create", "edit", "delete"}) {
        const Result result = rkmon.run({"can"_q, QString::fromUtf8(action), "Slope"_q});
        EXPECT_EQ(result.code, 0) << action;
        EXPECT_EQ(result.output, "permitted\n"_q);
    }
    EXPECT_EQ(rkmon.run({"can"_q, "create"_q, categories().last()}).code, 0);
    EXPECT_EQ(rkmon.run({"can"_q, "create"_q, "none"_q}).code, 3);

    actAs(reader);
    const Result refused = rkmon.run({"can"_q, "edit"_q, "Slope"_q});
    EXPECT_EQ(refused.code, 3);
    EXPECT_EQ(refused.output, "not permitted\n"_q);
    EXPECT_EQ(refused.messages, QString());
    const Result json = rkmon.run({"can"_q, "edit"_q, "Slope"_q, "--json"_q});
    EXPECT_EQ(json.code, 3);
    EXPECT_EQ(json.object(),
              (QJsonObject{{"action"_q, "edit"_q}, {"category"_q, "Slope"_q}, {"permitted"_q, false}}));
}

TEST_F(RkmonCommands, CanNeverTakesAFailureForARefusal)
{
    rkmon.setVariable("RKMON_BASE_API"_q, "http://127.0.0.1:1/"_q);
    const Result result = rkmon.run({"can"_q, "create"_q, "Slope"_q});
    EXPECT_EQ(result.code, 5);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(
        result.messages,
        "rkmon: cannot reach http://127.0.0.1:1/ (connection refused); is monitor-service running?\n"_q);
}

TEST_F(RkmonCommands, ReaderMayNotChange)
{
    const QString id = created("VH"_q);
    actAs(reader);
    const QList<QStringList> changes{
        {"monitoring"_q, "create"_q, "--name"_q, "x"_q, "--category"_q, "Slope"_q},
        {"monitoring"_q, "update"_q, id, "--name"_q, "x"_q},
        {"monitoring"_q, "delete"_q, "--yes"_q, id}};
    for (const QStringList& change : changes) {
        const Result result = rkmon.run(change);
        EXPECT_EQ(result.code, 3) << change[1].toStdString();
        EXPECT_EQ(result.output, QString());
        EXPECT_TRUE(result.messages.contains("not permitted"_q)) << result.messages.toStdString();
    }
    EXPECT_EQ(namesListed({}), QStringList{"VH"_q});
}
