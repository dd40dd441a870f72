#include "AdminFixture.h"
#include "delivery/DeliveryIntake.h"
#include "delivery/DeliveryParser.h"
#include "store/OpenStore.h"
#include "store/sqlite/SqliteConnection.h"

namespace monitorservice {
namespace {

using ::testing::HasSubstr;

class SampleCommands : public test::AdminFixture
{
protected:
    // The identifier of its point.
    std::string deliver(const std::string& samples)
    {
        const std::string project = newProject();
        line({"category", "add", "Settlement"});
        const std::string subCategory = newSubCategory(project, "Level");
        const auto store = openStore(file, {});
        const auto session = store->write();
        session->documents(DocumentKind::Cell)
            .insert(project, "tower",
                    R"({"_id":"tower","projectId":")" + project +
                        R"(","name":"Tower","category":"Settlement","alarmTo":[],"links":[],)"
                        R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada",)"
                        R"("updatedAt":"2015-12-21T06:30:00.123Z","updatedBy":"Ada"})");
        const IntakeResult taken = takeIn(
            *session,
            parseDelivery(R"([{"cellId":"tower","subCategoryId":")" + subCategory +
                          R"(","name":"S1","data":[)" + samples + "]}]"),
            [](Right, const std::string&, const std::string&) { return true; }, "Ada");
        session->commit();
        const std::string quoted = memberAt(taken.points, 0, "_id");
        return quoted.substr(1, quoted.size() - 2);
    }
};

TEST_F(SampleCommands, SayWhatWasCheckedAndWhatIsWrong)
{
    deliver(R"({"count":1,"time":"2015-12-20T06:00:00Z","value":1.5})");
    EXPECT_EQ(line({"samples", "check"}), "1 point, 1 sample on 1 day: nothing is wrong");
    SqliteConnection(file, SqliteConnection::Access::Write, std::chrono::minutes(1))
        .execute("UPDATE day_rollup SET samples = 2");
    const test::CommandResult result = admin({"samples", "check"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.out, HasSubstr("project \"Pit\", monitoring \"Tower\", \"Level\", point \"S1\" ("));
    EXPECT_THAT(result.out, HasSubstr("): the day 2015-12-20 is kept otherwise than its samples give it\n"));
    EXPECT_THAT(result.error, HasSubstr("1 flaw in 1 point, 1 sample on 1 day"));
}

TEST_F(SampleCommands, PrintTheSamplesOfAPoint)
{
    const std::string point =
        deliver(R"({"count":2,"time":"2015-12-21T06:00:00+01:00","value":-0.1,)"
                R"("timeFlag":"N"},{"count":1,"time":"2015-12-20T06:00:00Z","value":1})");
    const test::CommandResult result = admin({"samples", "dump", point});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(result.out,
              R"({"count":1,"time":"2015-12-20T06:00:00.000Z","value":1,"timeFlag":"","delivery":1})"
              "\n"
              R"({"count":2,"time":"2015-12-21T06:00:00.000+01:00","value":-0.1,"timeFlag":"N","delivery":1})"
              "\n");
}

TEST_F(SampleCommands, OfNothingAreRefused)
{
    expectFailure({"samples", "check"}, "it does not exist");
    newProject();
    expectFailure({"samples", "dump", "none"}, "there is no point location \"none\"");
    EXPECT_EQ(line({"samples", "check"}), "0 points, 0 samples on 0 days: nothing is wrong");
}

} // namespace
} // namespace monitorservice
