#include "StoreContract.h"
#include "store/UtcDay.h"

#include <limits>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Two points and two alarms of one monitoring.
class ReadingsInExcess : public StoreContract
{
protected:
    ReadingsInExcess()
    {
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"North","category":"Settlement",)"
                    R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"a",)"
                    R"("updatedAt":"2026-01-01T00:00:00.000Z","updatedBy":"a"})");
        session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":"L"})");
        for (const std::string id : {"a1", "a2"}) {
            session->documents(DocumentKind::Alarm)
                .insert("p", id,
                        R"({"_id":")" + id +
                            R"(","projectId":"p","cellId":"c","subCategoryId":"s",)"
                            R"("createdAt":"2026-01-01T00:00:00.000Z"})");
        }
        point = insertPoint("w1");
        other = insertPoint("w2");
    }

    static std::string pointDocument(const std::string& id)
    {
        return R"({"_id":")" + id + R"(","projectId":"p","cellId":"c","subCategoryId":"s","name":")" + id +
               R"(","depth":"","lastDate":""})";
    }

    std::int64_t insertPoint(const std::string& id)
    {
        return session->measurements().insertPoint("p", id, pointDocument(id), 0);
    }

    // None of the point is later.
    void measure(const std::string& id, std::int64_t of, Instant time, std::int32_t count)
    {
        session->measurements().insertSample(of, utcDayOf(time), {time, count, 0, 1.0, "A"}, 0);
        session->measurements().replacePoint(of, pointDocument(id), time, std::nullopt);
    }

    Excesses& excesses() { return session->excesses(); }

    static Excesses::Visitor into(std::vector<std::string>& readings)
    {
        return [&readings](const ReadingInExcess& one) {
            readings.push_back(std::to_string(one.time) + "/" + std::to_string(one.count) + " " + one.alarm);
        };
    }

    std::vector<std::string> all(std::int64_t of, Instant from = std::numeric_limits<Instant>::min(),
                                 Instant before = std::numeric_limits<Instant>::max())
    {
        std::vector<std::string> readings;
        excesses().visit(of, from, before, into(readings));
        return readings;
    }

    std::unique_ptr<Session> session = store->write();
    std::int64_t point = 0;
    std::int64_t other = 0;
};

TEST_P(ReadingsInExcess, AreThoseOfAPointAndAPeriodInOrder)
{
    excesses().insert(point, {20, 1, "a2"});
    excesses().insert(point, {10, 2, "a1"});
    excesses().insert(point, {10, -1, "a1"});
    excesses().insert(point, {-10, 5, "a1"});
    excesses().insert(other, {10, 2, "a1"});
    EXPECT_THAT(all(point), ElementsAre("-10/5 a1", "10/-1 a1", "10/2 a1", "20/1 a2"));
    EXPECT_THAT(all(point, 10, 20), ElementsAre("10/-1 a1", "10/2 a1"));
    EXPECT_THAT(all(other), ElementsAre("10/2 a1"));
    std::vector<std::string> ofAlarm;
    excesses().visitOfAlarm(point, "a1", into(ofAlarm));
    EXPECT_THAT(ofAlarm, ElementsAre("-10/5 a1", "10/-1 a1", "10/2 a1"));
}

TEST_P(ReadingsInExcess, OfThePresentMakeTheirAlarmsOpen)
{
    measure("w1", point, 10, 1);
    excesses().insert(point, {10, 1, "a1"});
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a1"));
    measure("w1", point, 20, 1);
    EXPECT_THAT(excesses().openAlarms("p"), IsEmpty());
    excesses().insert(point, {20, 1, "a2"});
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a2"));
    measure("w2", other, -10, -1);
    excesses().insert(other, {-10, -1, "a1"});
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a1", "a2"));
    measure("w3", insertPoint("w3"), 30, 1);
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a1", "a2"));
    EXPECT_THAT(excesses().openAlarms("q"), IsEmpty());
}

TEST_P(ReadingsInExcess, OfTheGreatestCountTellAtTheLatestTime)
{
    measure("w1", point, 10, 2);
    measure("w1", point, 10, -3);
    excesses().insert(point, {10, -3, "a1"});
    EXPECT_THAT(excesses().openAlarms("p"), IsEmpty());
    excesses().insert(point, {10, 2, "a2"});
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a2"));
}

TEST_P(ReadingsInExcess, MakeAnAlarmOpenOnce)
{
    measure("w1", point, 10, 1);
    measure("w2", other, 10, 1);
    excesses().insert(point, {10, 1, "a1"});
    excesses().insert(other, {10, 1, "a1"});
    EXPECT_THAT(excesses().openAlarms("p"), ElementsAre("a1"));
}

TEST_P(ReadingsInExcess, StandInOneAlarm)
{
    excesses().insert(point, {10, 2, "a1"});
    EXPECT_EQ(failureOf(*session, [&] { excesses().insert(point, {10, 2, "a2"}); }), "conflict");
}

TEST_P(ReadingsInExcess, NeedAnAlarmThatIsThere)
{
    EXPECT_EQ(failureOf(*session, [&] { excesses().insert(point, {10, 2, "a3"}); }), "conflict");
}

TEST_P(ReadingsInExcess, HoldTheirAlarm)
{
    excesses().insert(point, {10, 2, "a1"});
    EXPECT_EQ(failureOf(*session, [&] { session->documents(DocumentKind::Alarm).remove("p", "a1"); }),
              "conflict");
}

TEST_P(ReadingsInExcess, AreTakenOutOneByOne)
{
    excesses().insert(point, {10, 2, "a1"});
    excesses().insert(point, {10, 3, "a1"});
    excesses().remove(point, 10, 2);
    excesses().remove(point, 10, 2);
    excesses().remove(other, 10, 3);
    EXPECT_THAT(all(point), ElementsAre("10/3 a1"));
    excesses().remove(point, 10, 3);
    session->documents(DocumentKind::Alarm).remove("p", "a1");
    session->commit();
}

TEST_P(ReadingsInExcess, GoWithWhatWasDelivered)
{
    excesses().insert(point, {10, 2, "a1"});
    session->measurements().removeDelivered("c", "s");
    EXPECT_TRUE(all(point).empty());
    session->commit();
}

RK_EVERY_STORE(ReadingsInExcess);

} // namespace
} // namespace monitorservice::test
