#include "administration/ProjectAdministration.h"

#include "AdministrationFixture.h"

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ProjectsAdministered : public test::AdministrationFixture
{
protected:
    ProjectAdministration administration{*session, "Ada"};
};

TEST_F(ProjectsAdministered, AreMadeAndToldOf)
{
    const Administered<Project> made = administration.create({"Slope", "Europe/Vienna"});
    EXPECT_THAT(made.warnings, IsEmpty());
    EXPECT_EQ(session->projects().find(made.thing.id)->timeZone, "Europe/Vienna");
    ASSERT_THAT(entries(), SizeIs(1));
    const Change entry = entries().front();
    EXPECT_EQ(told(entry),
              "project.created of \"" + made.thing.id + "\", \"\": null -> " + toDocument(made.thing));
    EXPECT_EQ(entry.subject, made.thing.id);
    EXPECT_EQ(entry.name, "Slope");
    EXPECT_EQ(entry.author.name, "Ada");
    EXPECT_EQ(entry.author.time, "2015-12-21T06:30:00.123Z");
}

TEST_F(ProjectsAdministered, AreRenamedAndToldOfOnce)
{
    EXPECT_EQ(administration.rename("p1", "Grube").thing.name, "Grube");
    EXPECT_EQ(administration.rename("p1", "Grube").thing.name, "Grube");
    EXPECT_EQ(session->projects().find("p1")->name, "Grube");
    ASSERT_THAT(entries(), SizeIs(1));
    EXPECT_EQ(told(entries().front()),
              R"(project.renamed of "p1", "": {"_id":"p1","name":"Pit","timeZone":"UTC"} -> )"
              R"({"_id":"p1","name":"Grube","timeZone":"UTC"})");
}

TEST_F(ProjectsAdministered, LeaveTheirEntriesBehind)
{
    EXPECT_EQ(administration.remove("p1").name, "Pit");
    EXPECT_FALSE(session->projects().find("p1"));
    ASSERT_THAT(entries(), SizeIs(1));
    EXPECT_EQ(told(entries().front()),
              R"(project.removed of "p1", "": {"_id":"p1","name":"Pit","timeZone":"UTC"} -> null)");
}

TEST_F(ProjectsAdministered, WhatIsRefusedIsNotToldOf)
{
    EXPECT_EQ(refusalOf([&] { administration.create({" ", "UTC"}); }), "bad name: is empty");
    EXPECT_EQ(refusalOf([&] {
                  administration.create({"Slope", "Europe/Vien"});
              }),
              "bad timeZone: is not a zone of this system's time zone database");
    EXPECT_EQ(refusalOf([&] { administration.rename("p1", ""); }), "bad name: is empty");
    EXPECT_EQ(refusalOf([&] { administration.rename("p9", "Slope"); }),
              "unknown project: there is no project \"p9\"");
    EXPECT_EQ(refusalOf([&] { administration.remove("p9"); }), "unknown project: there is no project \"p9\"");
    session->documents(DocumentKind::SubCategory)
        .insert("p1", "s1",
                R"({"_id":"s1","projectId":"p1","name":"Ground","category":"Settlement","alias":""})");
    EXPECT_EQ(refusalOf([&] { administration.remove("p1"); }),
              "in use project: project p1 is still in use and stays: sub-categories: 1");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(ProjectsAdministered, ThatAreCalledAlikeAreWarnedOf)
{
    EXPECT_THAT(administration.create({"PIT", "UTC"}).warnings,
                ElementsAre("project p1 is called \"Pit\" too"));
    const std::string other = administration.create({"Slope", "UTC"}).thing.id;
    EXPECT_THAT(administration.rename(other, "Pit").warnings, SizeIs(2));
}

} // namespace
} // namespace monitorservice
