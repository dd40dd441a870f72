#include "inspection/SampleCheck.h"

#include "store/postgres/PostgresConnection.h"
#include "store/sqlite/SqliteConnection.h"
#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace monitorservice {
namespace {

using test::delivery;
using test::point;
using test::sample;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Days of Los Angeles; the first delivery brings three samples on two of them, the second one a third day.
class SampleCheck : public test::IntakeFixture
{
protected:
    SampleCheck()
    {
        EXPECT_EQ(take(delivery({point("P1", {sample("2015-12-21T12:00:00.000-08:00", 1, "1"),
                                              sample("2015-12-21T23:59:59.999-08:00", 1, "2"),
                                              sample("2015-12-22T00:00:00.000-08:00", 1, "3")}),
                                 point("P2", {sample("2015-12-21T12:00:00.000-08:00", 1, "1.5")},
                                       R"(,"depth":"2.5")", "c3", "s3")})),
                  "changed");
        EXPECT_EQ(take(delivery({point("P1", {sample("2015-12-23T12:00:00Z", 1, "4")})})), "changed");
    }

    // As no service would: by a statement in the language of the store.
    void damage(const std::string& inFile, const std::string& inDatabase)
    {
        if (testStore.isInDatabase()) {
            PostgresConnection(testStore.location()).execute(inDatabase);
        } else {
            SqliteConnection(testStore.location(), SqliteConnection::Access::Write, std::chrono::minutes(1))
                .execute(inFile);
        }
    }
    void damage(const std::string& statement) { damage(statement, statement); }

    std::vector<std::string> flaws()
    {
        std::vector<std::string> found;
        checked = checkSamples(store, [&found](const std::string& flaw) { found.push_back(flaw); });
        EXPECT_EQ(checked.flaws, found.size());
        return found;
    }

    CheckedSamples checked;
};

TEST_F(SampleCheck, FindsNothingWrongWithWhatWasDelivered)
{
    EXPECT_THAT(flaws(), IsEmpty());
    EXPECT_EQ(checked.points, 2U);
    EXPECT_EQ(checked.samples, 5U);
    EXPECT_EQ(checked.days, 4U);
}

TEST_F(SampleCheck, NamesThePointOfAFlaw)
{
    damage(
        "UPDATE point_locations SET document = replace(document, '\"insertCount\":1', '\"insertCount\":7')");
    EXPECT_THAT(flaws(),
                ElementsAre(AllOf(
                    HasSubstr("project \"Bluff\", monitoring \"cell c3\", \"sub s3\", point \"P2\" at 2.5 ("),
                    HasSubstr("): 1 samples are held, but 7 are counted"))));
}

TEST_F(SampleCheck, FindsDaysThatAreKeptOtherwise)
{
    damage("UPDATE day_rollup SET value = value + 1 WHERE value = 2",
           "UPDATE sample_segments SET last_value = last_value + 1 WHERE last_value = 2");
    EXPECT_THAT(flaws(),
                Contains(HasSubstr("the day 2015-12-21 is kept otherwise than its samples give it")));
}

TEST_F(SampleCheck, FindsSamplesThatAreGone)
{
    damage("DELETE FROM samples WHERE value = 4", "DELETE FROM sample_segments WHERE last_value = 4");
    EXPECT_THAT(flaws(), AllOf(Contains(HasSubstr("\"P1\"")),
                               Contains(HasSubstr("3 samples are held, but 4 are counted")),
                               Contains(HasSubstr("its \"lastDate\" is not the time of its latest sample"))));
}

TEST_F(SampleCheck, FindsSamplesThatUndoingWouldMiss)
{
    damage("UPDATE point_locations SET last_delivery = 1 WHERE name = 'P1'",
           "UPDATE sample_segments SET last_delivery = 1 WHERE last_delivery = 2");
    EXPECT_THAT(flaws(), ElementsAre(HasSubstr(testStore.isInDatabase()
                                                   ? "1 samples are of delivery 2, but 0 are found as such"
                                                   : "it has samples of a delivery after the one that has "
                                                     "changed it last")));
}

// The points after it are read all the same.
TEST_F(SampleCheck, GoesOnAfterWhatCannotBeRead)
{
    damage("UPDATE point_locations SET document = '{' || document WHERE name = 'P1'",
           "UPDATE sample_segments SET content = '\\x00' WHERE last_value = 4");
    EXPECT_THAT(flaws(),
                ElementsAre(testStore.isInDatabase() ? AllOf(HasSubstr("\"P1\""), HasSubstr("cannot be read"))
                                                     : AllOf(HasSubstr(", point "), HasSubstr("damaged"))));
    EXPECT_EQ(checked.points, 2U);
}

} // namespace
} // namespace monitorservice
