#include "extensions/Projects.h"

#include "PagedReading.h"
#include "ScriptedExtensions.h"

namespace {

class Projects : public ScriptedExtensions
{
protected:
    Projects() { announceAll(); }

    const QJsonObject project = jsonObject(R"({"_id":"p7","name":"Tunnel","timeZone":"Europe/Vienna"})");
    const QJsonObject subCategory =
        jsonObject(R"({"_id":"s1","name":"Ground level","category":"Settlement","alias":"GL",
                       "kind":"settlement","unit":"mm","decimals":1})");
};

} // namespace

TEST_F(Projects, AreListedWithTheirTimeZones)
{
    answer(QJsonArray{project});
    answer(jsonObject(R"({"count":1})"));
    const QList<ServiceProject> projects = service.projects();
    ASSERT_EQ(projects.size(), 1);
    EXPECT_EQ(projects[0].id, "p7"_q);
    EXPECT_EQ(projects[0].name, "Tunnel"_q);
    EXPECT_EQ(projects[0].timeZone, "Europe/Vienna"_q);
    EXPECT_EQ(lastRequest(), "GET projects");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}}));
}

TEST_F(Projects, AreReadOneByOne)
{
    answer(project);
    EXPECT_EQ(service.project("p7"_q).name, "Tunnel"_q);
    EXPECT_EQ(lastRequest(), "GET projects/p7");
}

TEST_F(Projects, AreReadPageByPage)
{
    QJsonArray first;
    for (int i = 0; i < paging::pageRows; ++i) {
        QJsonObject row = project;
        row["_id"_q] = QString::number(i);
        first.append(row);
    }
    QJsonObject last = project;
    last["_id"_q] = "last"_q;
    answer(first);
    answer(QJsonArray{first.last(), last});
    answer(QJsonObject{{"count"_q, paging::pageRows + 1}});
    EXPECT_EQ(service.projects().size(), paging::pageRows + 1);
    EXPECT_EQ(ScriptServer::decodedQuery(server.requests().at(2).target),
              (Query{{"where"_q, "{}"_q}, {"skip"_q, "999"_q}, {"limit"_q, "1000"_q}}));
}

TEST_F(Projects, HaveSubCategoriesWithKindUnitAndDecimals)
{
    QJsonObject bare = subCategory;
    bare["_id"_q] = "s2"_q;
    bare["unit"_q] = QString();
    bare["decimals"_q] = QJsonValue::Null;
    answer(QJsonArray{subCategory, bare});
    answer(jsonObject(R"({"count":2})"));
    const QList<MeasuredSubCategory> found = service.subCategories("p7"_q);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].id, "s1"_q);
    EXPECT_EQ(found[0].name, "Ground level"_q);
    EXPECT_EQ(found[0].category, "Settlement"_q);
    EXPECT_EQ(found[0].alias, "GL"_q);
    EXPECT_EQ(found[0].kind, "settlement"_q);
    EXPECT_EQ(found[0].unit, "mm"_q);
    EXPECT_EQ(found[0].decimals, 1);
    EXPECT_EQ(found[1].unit, QString());
    EXPECT_EQ(found[1].decimals, std::nullopt);
    EXPECT_EQ(lastRequest(), "GET projects/p7/subCategories");
}

TEST_F(Projects, AreCheckedMemberByMember)
{
    const auto listed = [&](const QJsonObject& document) {
        answer(QJsonArray{document});
    };
    expectMembersAreChecked(project, listed, [&] { service.projects(); });
    expectMembersAreChecked(
        project, [&](const QJsonObject& document) { answer(document); }, [&] { service.project("p7"_q); });
    expectMembersAreChecked(subCategory, listed, [&] { service.subCategories("p7"_q); });
}
