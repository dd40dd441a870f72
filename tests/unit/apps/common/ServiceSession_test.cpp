#include "extensions/ScriptedExtensions.h"

namespace {

class SessionByName : public ScriptedExtensions
{
protected:
    Configuration configurationWith(const QString& name) const
    {
        Configuration configuration = configurationFor(server);
        configuration.project.clear();
        configuration.projectName = name;
        return configuration;
    }

    void answerProjects(const QJsonArray& projects)
    {
        answer(projects);
        answer(QJsonObject{{"count"_q, projects.size()}});
    }

    static QJsonObject project(const QString& id, const QString& name)
    {
        return {{"_id"_q, id}, {"name"_q, name}, {"timeZone"_q, "Europe/Vienna"_q}};
    }

    const QString north = "0123456789abcdef01234567"_q;
    const QString south = "0123456789abcdef01234568"_q;
};

} // namespace

TEST_F(SessionByName, AsksForTheProjectOnce)
{
    ServiceSession named(configurationWith("North"_q));
    server.answerJson(200, about(R"("about","projects")"));
    answerProjects({project(south, "South"_q), project(north, "North"_q)});
    EXPECT_EQ(named.project(), north);
    EXPECT_EQ(named.project(), north);

    int count = 0;
    server.answerJson(200, R"({"count":3})");
    named.projectData().getMonitoringRangeCount(RKMonitoringCondition(), count);
    EXPECT_EQ(lastRequest(), "GET projects/%1/cells"_q.arg(north).toStdString());
}

TEST_F(SessionByName, AsksNothingForAnIdentifier)
{
    ServiceSession identified(configurationFor(server));
    EXPECT_EQ(identified.project(), "p7"_q);
    identified.projectData();
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(SessionByName, RefusesWhatItCannotTell)
{
    const auto find = [](ServiceSession& searching) {
        return failureOf([&] { searching.projectData(); });
    };
    ServiceSession named(configurationWith("North"_q));
    server.answerJson(404, R"({"message":"no such resource","status":404})");
    EXPECT_EQ(find(named), FailureKind::BadInput); // a service without extensions

    ServiceSession other(configurationWith("North"_q));
    server.answerJson(200, about(R"("about","projects")"));
    answerProjects({project(south, "South"_q)});
    EXPECT_EQ(find(other), FailureKind::NotFound);
    answerProjects({project(south, "North"_q), project(north, "North"_q)});
    EXPECT_EQ(find(other), FailureKind::BadInput);
    answerProjects({project(north, "North"_q)});
    EXPECT_EQ(find(other), std::nullopt); // nothing wrong was remembered
}
