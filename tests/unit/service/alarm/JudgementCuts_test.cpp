#include "domain/AlarmDetail.h"
#include "support/Chance.h"
#include "unit/service/delivery/DeliveryText.h"
#include "unit/service/delivery/IntakeFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace monitorservice {
namespace {

using test::Chance;
using test::member;

// Everything is a whole number of thousandths here, so that what is beyond a limit is known exactly.
using Thousandths = std::int64_t;

std::string textOf(Thousandths value)
{
    std::ostringstream text;
    text << (value < 0 ? "-" : "") << std::abs(value) / 1000 << '.' << std::setw(3) << std::setfill('0')
         << std::abs(value) % 1000;
    return text.str();
}

struct SitePoint
{
    std::string name;
    std::string depth;
    std::optional<Thousandths> initialValue;
    std::map<std::pair<int, int>, Thousandths> readings; // by day of December and hour
};

struct SiteGroup
{
    std::string id;
    std::vector<std::string> names;
    bool isPercent = false;
    Thousandths dayLimit = 0; // of percent: thousandths of a percent
    Thousandths totalLimit = 0;
    LimitSide side = LimitSide::Both;
};

struct Site
{
    std::vector<SitePoint> points;
    std::vector<SiteGroup> groups;
};

int countOf(int day, int hour)
{
    return day * 100 + hour;
}

// A reading, named by point, depth and count.
using ReadingName = std::tuple<std::string, std::string, int>;

// What follows from the readings by the rules as they are written down.
struct Expected
{
    std::set<ReadingName> inExcess;
    std::map<std::string, std::pair<long double, long double>> worst; // total and daily excess of each name
};

Thousandths onSide(Thousandths variation, LimitSide side)
{
    return side == LimitSide::Both ? std::abs(variation) : side == LimitSide::Rising ? variation : -variation;
}

class Computation
{
public:
    explicit Computation(const Site& site) : m_site(site)
    {
        for (const SitePoint& point : site.points) {
            for (const auto& [when, value] : point.readings) {
                judge(point, when.first, when.second, value);
            }
        }
    }

    const Expected& expected() const { return m_expected; }

private:
    void judge(const SitePoint& point, int day, int hour, Thousandths value)
    {
        const Thousandths reference = point.initialValue.value_or(point.readings.begin()->second);
        std::optional<std::pair<int, Thousandths>> previous; // day and last value
        for (const auto& [when, held] : point.readings) {
            if (when.first < day) {
                previous = {when.first, held};
            }
        }
        for (const SiteGroup& group : m_site.groups) {
            if (std::count(group.names.begin(), group.names.end(), point.name) == 0) {
                continue;
            }
            auto& [worstTotal, worstDaily] = m_worst[point.name];
            const Thousandths total = onSide(value - reference, group.side);
            bool isOver = false;
            if (group.totalLimit > 0 && total > group.totalLimit) {
                isOver = true;
                worstTotal = std::max(worstTotal, (total - group.totalLimit) / 1000.0L);
            }
            if (previous && group.dayLimit > 0) {
                const Thousandths days = day - previous->first;
                const Thousandths change = onSide(value - previous->second, group.side);
                // change / days > limit, or change / days * 100 / |reference| > limit
                const bool isOverDaily =
                    group.isPercent
                        ? reference != 0 && change * 100'000 > group.dayLimit * days * std::abs(reference)
                        : change > group.dayLimit * days;
                if (isOverDaily) {
                    isOver = true;
                    const long double limit =
                        group.isPercent ? group.dayLimit / 100'000.0L * std::abs(reference) / 1000.0L
                                        : group.dayLimit / 1000.0L;
                    worstDaily = std::max(worstDaily, change / 1000.0L / days - limit);
                }
            }
            if (isOver) {
                m_expected.inExcess.emplace(point.name, point.depth, countOf(day, hour));
                m_expected.worst[point.name] = m_worst[point.name];
            }
        }
    }

    const Site& m_site;
    Expected m_expected;
    std::map<std::string, std::pair<long double, long double>> m_worst;
};

Site siteOf(Chance& chance)
{
    const auto value = [&chance](Thousandths around, std::size_t width) {
        return around + static_cast<Thousandths>(chance.below(width)) - static_cast<Thousandths>(width / 2);
    };
    Site site;
    const std::vector<std::pair<std::string, std::string>> names{
        {"S1", ""}, {"S2", ""}, {"S3", ""}, {"I1", "0.5"}, {"I1", "1.0"}, {"I1", "10"}, {"free", ""}};
    for (const auto& [name, depth] : names) {
        SitePoint point{name, depth, std::nullopt, {}};
        const Thousandths around = chance.once(3) ? 100'000 : value(0, 3'000);
        if (!chance.once(2)) {
            point.initialValue = value(around, 3'000);
            if (point.initialValue == 0) {
                point.initialValue = 1; // 0 is none
            }
        }
        for (int day = 1; day <= 12; ++day) {
            for (std::size_t readings = chance.below(4); readings > 0; --readings) {
                point.readings[{day, static_cast<int>(chance.below(24))}] = value(around, 10'000);
            }
        }
        site.points.push_back(std::move(point));
    }
    site.groups = {{"ga", {"S1", "S2", "I1"}, false, value(2'000, 2'000), value(3'000, 2'000)},
                   {"gb", {"S2", "S3"}, true, value(60'000, 100'000), 0},
                   {"gc", {"S1", "S3", "I1"}, false, 0, value(2'500, 3'000), LimitSide::Falling},
                   {"gd", {"S2", "I1", "S2"}, false, value(1'500, 2'000), 0, LimitSide::Rising}};
    return site;
}

// One thing that is delivered.
struct Piece
{
    const SitePoint* point;
    std::optional<std::pair<int, int>> reading; // nothing: the initial value
    Thousandths value;
};

std::string jsonOf(const Piece& piece)
{
    const std::string depth = R"(,"depth":")" + piece.point->depth + "\"";
    if (!piece.reading) {
        return test::point(piece.point->name, {}, depth + R"(,"initialValue":)" + textOf(piece.value), "c3",
                           "s3");
    }
    const auto [day, hour] = *piece.reading;
    std::ostringstream time;
    time << "2015-12-" << std::setw(2) << std::setfill('0') << day << 'T' << std::setw(2) << hour
         << ":00:00.000-08:00";
    return test::point(piece.point->name, {test::sample(time.str(), countOf(day, hour), textOf(piece.value))},
                       depth, "c3", "s3");
}

// The site's data in pieces of any order, some of them wrong at first and then corrected.
std::vector<Piece> piecesOf(const Site& site, Chance& chance)
{
    std::vector<Piece> pieces;
    for (const SitePoint& point : site.points) {
        for (const auto& [when, value] : point.readings) {
            pieces.push_back({&point, when, value});
        }
        if (point.initialValue) {
            pieces.push_back({&point, std::nullopt, *point.initialValue});
        }
    }
    for (std::size_t i = pieces.size(); i > 1; --i) {
        std::swap(pieces[i - 1], pieces[chance.below(i)]);
    }
    std::vector<Piece> wrong;
    for (const Piece& piece : pieces) {
        if (chance.once(8)) {
            wrong.push_back(piece);
            wrong.back().value = piece.value * 10 + 1;
        }
    }
    // Each of them comes before what corrects it.
    pieces.insert(pieces.begin(), wrong.begin(), wrong.end());
    return pieces;
}

class JudgementCuts : public test::IntakeFixture
{
protected:
    void addGroups(Session& session, const Site& site)
    {
        for (const SiteGroup& one : site.groups) {
            Group group;
            group.id = one.id;
            group.project = "p1";
            group.cell = "c3";
            group.subCategory = "s3";
            group.points = one.names;
            group.dayVariationType = one.isPercent ? 1 : 0;
            group.dayVariation = static_cast<double>(one.dayLimit) / 1000;
            group.totalVariation = static_cast<double>(one.totalLimit) / 1000;
            group.daySide = one.side;
            group.totalSide = one.side;
            session.documents(DocumentKind::Group).insert("p1", group.id, toDocument(group));
        }
    }

    static void deliver(Session& session, const std::vector<Piece>& pieces, Chance& chance)
    {
        const auto mayDo = [](Right, const std::string&, const std::string&) {
            return true;
        };
        const std::size_t most = 1 + chance.below(pieces.size());
        for (std::size_t begin = 0; begin < pieces.size();) {
            // Two values of one reading are no delivery.
            std::set<std::tuple<std::string, std::string, std::optional<std::pair<int, int>>>> named;
            std::vector<std::string> points;
            for (std::size_t wanted = 1 + chance.below(most); wanted > 0 && begin < pieces.size(); --wanted) {
                const Piece& piece = pieces[begin];
                if (!named.emplace(piece.point->name, piece.point->depth, piece.reading).second) {
                    break;
                }
                points.push_back(jsonOf(piece));
                ++begin;
            }
            takeIn(session, parseDelivery(test::delivery(points)), mayDo, "Ada");
        }
    }

    static std::set<ReadingName> excessesIn(const Session& session)
    {
        std::set<ReadingName> readings;
        for (const test::HeldPoint& point : test::pointsOf(session, "p1")) {
            for (const ReadingInExcess& reading : point.excesses) {
                readings.emplace(point.name, point.depth, reading.count);
            }
        }
        return readings;
    }

    // Everything that the alarms say, without identifiers and without what tells of when they were found.
    static std::vector<std::string> alarmsIn(const Session& session)
    {
        std::vector<std::string> lines;
        std::map<std::string, std::string> names;
        const auto add = [&](DocumentKind kind, const std::vector<const char*>& members) {
            for (const std::string& document : test::documentsOf(session, "p1", kind)) {
                std::string line;
                for (const char* const one : members) {
                    const std::string value = member(document, one);
                    const auto named = names.find(value);
                    line += (named == names.end() ? value : named->second) + ' ';
                }
                names.emplace(member(document, "_id"), line);
                lines.push_back(line);
            }
        };
        add(DocumentKind::Alarm, {"cellId", "subCategoryId", "alarmDay", "pointCounts"});
        add(DocumentKind::AlarmDetail,
            {"alarmManId", "pointName", "totalVar", "dayVar", "totalBeyound", "dayBeyound", "isThreeVar",
             "isInclinometer", "monitorCount", "monitorTime", "depth", "value", "reference", "groupId",
             "totalLimit", "dayLimit", "dayVarType"});
        add(DocumentKind::AlarmDepth,
            {"detailId", "pointName", "monitorCount", "monitorTime", "totalValue", "depth"});
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    static void expectWorst(const Session& session, const Expected& expected)
    {
        std::map<std::string, std::pair<double, double>> found;
        for (const std::string& document : test::documentsOf(session, "p1", DocumentKind::AlarmDetail)) {
            const auto detail = fromDocument<AlarmDetail>(document);
            auto& [total, daily] = found[detail.point];
            total = std::max(total, detail.totalExcess);
            daily = std::max(daily, detail.dayVariationType == 1
                                        ? detail.dailyExcess / 100 * std::abs(detail.reference)
                                        : detail.dailyExcess);
        }
        ASSERT_EQ(found.size(), expected.worst.size());
        for (const auto& [name, worst] : expected.worst) {
            EXPECT_NEAR(found.at(name).first, static_cast<double>(worst.first), 1e-9) << name;
            EXPECT_NEAR(found.at(name).second, static_cast<double>(worst.second), 1e-9) << name;
        }
    }
};

TEST_F(JudgementCuts, GiveTheSameReadingsAndAmountsHoweverTheDataCame)
{
    Chance chance(20151221);
    std::size_t excesses = 0;
    for (int siteNumber = 0; siteNumber < 10; ++siteNumber) {
        const Site site = siteOf(chance);
        const Computation computation(site);
        const Expected& expected = computation.expected();
        excesses += expected.inExcess.size();
        std::vector<std::string> first;
        for (int cut = 0; cut < 20; ++cut) {
            const auto session = store.write(); // never committed
            addGroups(*session, site);
            deliver(*session, piecesOf(site, chance), chance);
            ASSERT_EQ(excessesIn(*session), expected.inExcess) << siteNumber << ' ' << cut;
            expectWorst(*session, expected);
            const std::vector<std::string> alarms = alarmsIn(*session);
            if (cut == 0) {
                first = alarms;
            }
            ASSERT_EQ(alarms, first) << siteNumber << ' ' << cut;
        }
    }
    EXPECT_GT(excesses, 200U);
}

} // namespace
} // namespace monitorservice
