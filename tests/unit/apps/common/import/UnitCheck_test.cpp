#include "import/UnitCheck.h"

#include "ScriptedSession.h"

#include <gmock/gmock.h>

// Units that files say against those of the service.

namespace {

const QByteArray aboutStart = R"({"name":"monitor-service","version":"1","extensions":[)";
const QByteArray aboutEnd = R"(],"owner":"Ana","rights":[]})";
const QString water = "0123456789abcdef01234568"_q;

class UnitCheck : public ScriptedSession
{
protected:
    void answerUnit(const QByteArray& unit)
    {
        server.answerJson(200, aboutStart + R"("subCategoryKinds")" + aboutEnd);
        server.answerJson(200, R"([{"_id":"0123456789abcdef01234568","name":"Water","alias":"W",
            "category":"Slope","kind":"water level","unit":")" +
                                   unit + R"(","decimals":null}])");
        server.answerJson(200, R"({"count":1})");
    }

    // Of a service that is asked what it can.
    QStringList problemsOf(const QList<PlacedFile>& files)
    {
        ServiceSession asking(configurationFor(server));
        return unitProblems(asking, files);
    }

    static PlacedFile fileOf(const char* path, const QMultiMap<QString, WrittenUnit>& units)
    {
        MeasuredFile file;
        file.path = QString::fromUtf8(path);
        file.units = units;
        return {file, {"0123456789abcdef01234567"_q, water}};
    }
};

} // namespace

TEST_F(UnitCheck, FilesWithoutUnitsAskForNothing)
{
    EXPECT_TRUE(problemsOf({fileOf("a.csv", {})}).isEmpty());
}

TEST_F(UnitCheck, TheUnitOfTheServiceHolds)
{
    answerUnit("m");
    EXPECT_TRUE(problemsOf({fileOf("a.ags", {{"WDEP"_q, {"m"_q, 7}}})}).isEmpty());
    answerUnit("m");
    EXPECT_EQ(problemsOf({fileOf("a.ags", {{"WDEP"_q, {"mm"_q, 7}}})}),
              QStringList{"a.ags:7: the unit of \"WDEP\" is \"mm\" here, and \"m\" otherwise; nothing is "
                          "converted, but a mapping can say that it is the same"_q});
}

TEST_F(UnitCheck, WithoutThatFilesMustAgree)
{
    answerUnit("");
    EXPECT_TRUE(
        problemsOf({fileOf("a.ags", {{"WDEP"_q, {"m"_q, 7}}}), fileOf("b.ags", {{"WDEP"_q, {"m"_q, 9}}})})
            .isEmpty());
    server.answerJson(200, aboutStart + aboutEnd);
    EXPECT_EQ(
        problemsOf({fileOf("a.ags", {{"WDEP"_q, {"m"_q, 7}}}), fileOf("b.ags", {{"WLEV"_q, {"mm"_q, 9}}})})
            .size(),
        1);
}
