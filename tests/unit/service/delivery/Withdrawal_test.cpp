#include "delivery/Withdrawal.h"

#include "delivery/DeliveryUndo.h"
#include "delivery/PointDeletion.h"
#include "domain/SampleText.h"
#include "support/Chance.h"
#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace monitorservice {
namespace {

using test::Chance;
using test::HeldPoint;
using test::member;
using ::testing::IsEmpty;

// Every member of a document but those that tell when it was made, and by what identifiers it is known.
std::string withoutIdentity(const std::string& document)
{
    const std::vector<std::string_view> identity{"_id",       "alarmManId", "detailId",  "dataManageId",
                                                 "cellId",    "cellName",   "alarmTime", "createdAt",
                                                 "createdBy", "updatedAt",  "updatedBy"};
    simdjson::dom::parser parser;
    std::string text;
    for (const auto& [name, value] : simdjson::dom::object(parser.parse(document))) {
        if (std::count(identity.begin(), identity.end(), name) == 0) {
            text += ' ' + std::string(name) + '=' + simdjson::minify(value);
        }
    }
    return text;
}

// Lines that one of the two has alone; both are sorted.
std::vector<std::string> difference(const std::vector<std::string>& left,
                                    const std::vector<std::string>& right)
{
    std::vector<std::string> lines;
    std::set_symmetric_difference(left.begin(), left.end(), right.begin(), right.end(),
                                  std::back_inserter(lines));
    return lines;
}

// Deliveries, corrections and deletions of every kind in any order, in a session that is never committed.
class Withdrawals : public test::IntakeFixture
{
protected:
    Withdrawals()
    {
        for (const char* const cell : {"c1", "c2"}) {
            const std::string prefix = cell;
            addGroup(prefix + "a", {"S1", "S2"}, 0, 4, 9, cell);
            addGroup(prefix + "b", {"S2", "I1"}, 1, 150, 0, cell);
            addGroup(prefix + "c", {"I1"}, 0, 0, 12, cell);
        }
        session = store.write();
    }

    bool deliver(const std::string& body)
    {
        const auto mayDo = [](Right, const std::string&, const std::string&) {
            return true;
        };
        return takeIn(*session, parseDelivery(body), mayDo, "Ada").changed;
    }

    static std::string randomDelivery(Chance& chance)
    {
        const std::vector<std::pair<std::string, std::string>> names{
            {"S1", ""}, {"S2", ""}, {"free", ""}, {"I1", "0.5"}, {"I1", "1"}, {"I1", "10"}};
        const std::string file = chance.once(2) ? "" : "file " + std::to_string(chance.below(1000));
        std::vector<std::string> points;
        for (const auto& [name, depth] : names) {
            if (chance.once(2)) {
                continue;
            }
            std::map<std::size_t, std::string> samples; // several of one time and count are no delivery
            for (std::size_t wanted = chance.below(6); wanted > 0; --wanted) {
                const std::size_t hour = chance.below(8 * 24 / 6) * 6;
                const std::string time = "2015-12-" + std::to_string(10 + hour / 24) + "T" +
                                         (hour % 24 < 10 ? "0" : "") + std::to_string(hour % 24) +
                                         (chance.once(2) ? ":00:00Z" : ":00:00+00:00");
                samples[hour] = test::sample(time, static_cast<int>(hour), std::to_string(chance.below(30)),
                                             chance.once(9) ? "B" : "A");
            }
            std::vector<std::string> texts;
            for (const auto& [hour, text] : samples) {
                texts.push_back(text);
            }
            std::string more = R"(,"depth":")" + depth + R"(","fileId":")" + file + "\"";
            more += chance.once(8) ? R"(,"initialValue":)" + std::to_string(1 + chance.below(20)) : "";
            more += chance.once(8) ? R"(,"alias":"alias )" + std::to_string(chance.below(9)) + "\"" : "";
            more += chance.once(8) ? R"(,"dataType":)" + std::to_string(chance.below(3)) : "";
            more += chance.once(8)
                        ? R"(,"links":[{"type":"model","rId":"m)" + std::to_string(chance.below(9)) + "\"}]"
                        : "";
            points.push_back(test::point(name, texts, more));
        }
        return test::delivery(points);
    }

    std::vector<HeldPoint> pointsIn(const std::string& cell) const
    {
        std::vector<HeldPoint> points = test::pointsOf(*session, "p1");
        points.erase(
            std::remove_if(points.begin(), points.end(),
                           [&](const HeldPoint& point) { return member(point.document, "cellId") != cell; }),
            points.end());
        return points;
    }

    static void addReadings(std::vector<std::string>& lines, const HeldPoint& point)
    {
        const std::string name = point.name + " @ " + point.depth;
        for (const Sample& sample : point.samples) {
            std::string text = name + " sample ";
            appendSample(text, sample);
            lines.push_back(text);
        }
        for (const DaySummary& day : point.days) {
            lines.push_back(name + " day " + std::to_string(day.day) + ' ' + std::to_string(day.time) + ' ' +
                            std::to_string(day.count) + ' ' + test::offsetText(day.offsetMinutes) + ' ' +
                            test::exactText(day.value) + ' ' + std::to_string(day.samples));
        }
        for (const ReadingInExcess& reading : point.excesses) {
            lines.push_back(name + " excess " + std::to_string(reading.time));
        }
    }

    // What the alarms of a monitoring say.
    void addAlarms(std::vector<std::string>& lines, const std::string& cell) const
    {
        std::map<std::string, std::string> names; // by identifier
        const auto add = [&](DocumentKind kind, const char* parent) {
            for (const std::string& document : test::documentsOf(*session, "p1", kind)) {
                const std::string of = member(document, parent);
                if (of != cell && names.count(of) == 0) {
                    continue;
                }
                const std::string line = names[of] + withoutIdentity(document);
                names[member(document, "_id")] = line;
                lines.push_back(line);
            }
        };
        add(DocumentKind::Alarm, "cellId");
        add(DocumentKind::AlarmDetail, "alarmManId");
        add(DocumentKind::AlarmDepth, "detailId");
    }

    // All that is there of the monitoring, but identities and the audit trail.
    std::vector<std::string> everythingOf(const std::string& cell) const
    {
        std::vector<std::string> lines;
        for (const HeldPoint& point : pointsIn(cell)) {
            lines.push_back(point.id + withoutIdentity(point.document));
            addReadings(lines, point);
        }
        addAlarms(lines, cell);
        for (const DocumentKind kind : {DocumentKind::DataManage, DocumentKind::History}) {
            for (const std::string& document : test::documentsOf(*session, "p1", kind)) {
                lines.push_back(withoutIdentity(document));
            }
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    // What follows from the readings, the initial values and the groups alone.
    std::vector<std::string> consequencesIn(const std::string& cell) const
    {
        std::vector<std::string> lines;
        for (const HeldPoint& point : pointsIn(cell)) {
            std::string line = point.name + " @ " + point.depth;
            for (const char* const name :
                 {"insertCount", "lastCount", "lastDate", "initialValue", "hasInitialValue"}) {
                line += ' ' + member(point.document, name);
            }
            lines.push_back(line);
            addReadings(lines, point);
        }
        addAlarms(lines, cell);
        for (std::string& line : lines) {
            for (const std::string& groups : {cell + "a", cell + "b", cell + "c"}) {
                for (std::size_t at = 0; (at = line.find(groups, at)) != std::string::npos;) {
                    line.erase(at, cell.size());
                }
            }
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    // The same data, delivered at once to a monitoring of its own, have the same consequences.
    void expectAsIfDeliveredAtOnce()
    {
        std::vector<std::string> points;
        for (const HeldPoint& held : pointsIn("c1")) {
            std::vector<std::string> samples;
            for (const Sample& one : held.samples) {
                appendSample(samples.emplace_back(), one);
            }
            const std::string initialValue = member(held.document, "initialValue");
            points.push_back(test::point(held.name, samples,
                                         R"(,"depth":")" + held.depth + R"(","initialValue":)" + initialValue,
                                         "c2"));
        }
        deliver(test::delivery(points));
        EXPECT_THAT(difference(consequencesIn("c1"), consequencesIn("c2")), IsEmpty());
        session->measurements().removeDelivered("c2", "s1");
    }

    void expectCounted() const
    {
        std::int64_t samples = 0;
        std::string latest;
        Instant latestTime = 0;
        for (const HeldPoint& point : pointsIn("c1")) {
            samples += static_cast<std::int64_t>(point.samples.size());
            if (!point.samples.empty() && point.samples.back().time > latestTime) {
                latestTime = point.samples.back().time;
                latest = isoText(latestTime, 0).substr(0, 19);
            }
        }
        for (const std::string& document : test::documentsOf(*session, "p1", DocumentKind::DataManage)) {
            EXPECT_EQ(member(document, "sampleCount"), std::to_string(samples));
            EXPECT_EQ(member(document, "lastDate").substr(0, 19), latest);
        }
    }

    // Takes the latest delivery back.
    Withdrawal undo()
    {
        const auto dataManage =
            fromDocument<DataManage>(test::documentsOf(*session, "p1", DocumentKind::DataManage).front());
        const auto history =
            fromDocument<History>(test::documentsOf(*session, "p1", DocumentKind::History).back());
        return undoDelivery(*session, dataManage, history, "Ada");
    }

    static PointLocation locationOf(const HeldPoint& point)
    {
        return fromDocument<PointLocation>(point.document);
    }

    std::unique_ptr<Session> session;
};

TEST_F(Withdrawals, DeliveriesTakenBackLeaveWhatWasThereBefore)
{
    Chance chance(7);
    std::size_t undone = 0;
    for (int round = 0; round < 25; ++round) {
        std::vector<std::vector<std::string>> before; // each delivery
        for (int step = 0; step < 16; ++step) {
            if (!before.empty() && chance.once(3)) {
                undo();
                ++undone;
                ASSERT_THAT(difference(everythingOf("c1"), before.back()), IsEmpty()) << round << ' ' << step;
                before.pop_back();
            } else {
                std::vector<std::string> held = everythingOf("c1");
                if (deliver(randomDelivery(chance))) {
                    before.push_back(std::move(held));
                }
            }
        }
        for (; !before.empty(); before.pop_back()) {
            undo();
            ++undone;
            ASSERT_THAT(difference(everythingOf("c1"), before.back()), IsEmpty()) << round;
        }
        EXPECT_TRUE(everythingOf("c1").empty());
    }
    EXPECT_GT(undone, 150U);
}

TEST_F(Withdrawals, OfAnyKindLeaveWhatFollowsFromTheDataThatAreLeft)
{
    Chance chance(11);
    std::size_t alarms = 0;
    std::size_t removed = 0;
    for (int round = 0; round < 25; ++round) {
        for (int step = 0; step < 12; ++step) {
            const std::vector<HeldPoint> points = pointsIn("c1");
            if (points.empty() || !chance.once(2)) {
                deliver(randomDelivery(chance));
            } else if (chance.once(4)) {
                removed += deletePoint(*session, locationOf(chance.of(points)), "Ada").removed > 0 ? 1 : 0;
            } else if (chance.once(3) && !test::documentsOf(*session, "p1", DocumentKind::History).empty()) {
                removed += undo().removed > 0 ? 1 : 0;
            } else {
                const Where where = Where::parse(R"({"count":{"$gte":)" + std::to_string(chance.below(190)) +
                                                 R"(,"$lt":)" + std::to_string(chance.below(190)) + "}}");
                removed += deleteSamples(*session, locationOf(chance.of(points)), where, "Ada").removed > 0;
            }
            expectAsIfDeliveredAtOnce();
            expectCounted();
            ASSERT_FALSE(HasFailure()) << round << ' ' << step;
            alarms += test::documentsOf(*session, "p1", DocumentKind::AlarmDetail).size();
        }
        session->measurements().removeDelivered("c1", "s1");
    }
    EXPECT_GT(removed, 50U);
    EXPECT_GT(alarms, 200U);
}

} // namespace
} // namespace monitorservice
