#include "StoreContract.h"
#include "domain/SampleText.h"
#include "json/JsonText.h"
#include "query/Matcher.h"
#include "query/QueryError.h"
#include "store/UtcDay.h"
#include "support/Chance.h"

#include <simdjson.h>

#include <algorithm>
#include <functional>
#include <map>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr Instant day = 24LL * 3600 * 1000;

std::string pointDocument(const std::string& name, const std::string& depth, const std::string& lastDate,
                          const std::string& links)
{
    return JsonObjectWriter()
        .text("_id", name + depth)
        .text("projectId", "p")
        .text("cellId", "c")
        .text("subCategoryId", "s")
        .text("name", name)
        .text("depth", depth)
        .text("lastDate", lastDate)
        .json("links", links)
        .text("updatedAt", "2015-12-21T00:00:00.000Z")
        .finish();
}

std::string textOf(const Sample& sample)
{
    std::string text;
    appendSample(text, sample);
    return text;
}

std::string textOf(const PointSummary& summary)
{
    const auto number = [](const std::optional<double>& value) {
        std::string text = "-";
        if (value) {
            text.clear();
            appendJsonNumber(text, *value);
        }
        return text;
    };
    return " latest " + (summary.latest ? textOf(*summary.latest) : "-") + " earliest " +
           number(summary.earliest) + " days " + number(summary.smallest) + ".." + number(summary.largest);
}

// A project with one monitoring and one sub-category in UTC.
class PointSelections : public StoreContract
{
protected:
    PointSelections()
    {
        write([](Session& session) {
            session.projects().insert({"p", "Pit", "UTC", 1});
            session.categories().add("Settlement");
            session.documents(DocumentKind::SubCategory)
                .insert("p", "s",
                        R"({"_id":"s","projectId":"p","name":"Ground","category":"Settlement","alias":""})");
            session.documents(DocumentKind::Cell)
                .insert("p", "c",
                        R"({"_id":"c","projectId":"p","name":"Tower","category":"Settlement",)"
                        R"("alarmTo":[],"links":[],"createdAt":"2015-12-21T00:00:00.000Z",)"
                        R"("createdBy":"","updatedAt":"2015-12-21T00:00:00.000Z","updatedBy":""})");
        });
    }

    std::int64_t insertPoint(Session& session, const std::string& name, const std::string& depth,
                             const std::vector<Sample>& samples,
                             const std::string& links = R"([{"type":"model","rId":"m1"}])")
    {
        std::optional<Instant> last;
        for (const Sample& sample : samples) {
            last = std::max(last.value_or(sample.time), sample.time);
        }
        const std::int64_t key = session.measurements().insertPoint(
            "p", name + depth, pointDocument(name, depth, last ? isoText(*last) : "", links), 0);
        for (const Sample& sample : samples) {
            session.measurements().insertSample(key, utcDayOf(sample.time), sample, 0);
        }
        return key;
    }

    static DocumentQuery query(const Where& where)
    {
        DocumentQuery query;
        query.project = "p";
        query.where = &where;
        return query;
    }

    // S1 has two samples a day on days 0 to 3, the second flagged B; S2 has none.
    void fillTwo()
    {
        std::vector<Sample> samples;
        for (Instant time = day / 4; time < 4 * day; time += day / 2) {
            samples.push_back(
                {time, 1, std::nullopt, static_cast<double>(time), time % day > day / 2 ? "B" : "A"});
        }
        write([&](Session& session) {
            keys = {insertPoint(session, "S1", "", samples), insertPoint(session, "S2", "", {})};
        });
    }

    // The days that a condition leaves, as day:time in quarters of a day.
    std::vector<std::string> days(const std::string& json)
    {
        const auto session = store->read();
        const Where where = Where::parse(json);
        std::vector<std::string> days;
        session->measurements()
            .select(query(where))
            ->visitDays([](const FoundPoint& /*point*/) { return true; },
                        [&days](const DayValue& value) {
                            days.push_back(std::to_string(value.day) + ":" +
                                           std::to_string(4 * value.time / day));
                        });
        return days;
    }

    // What the samples of S1 and of S2 come to under a condition.
    std::vector<std::string> summaries(const std::string& json, const SummaryParts& parts)
    {
        const auto session = store->read();
        const Where where = Where::parse(json);
        std::vector<std::string> found;
        session->measurements()
            .select(query(where))
            ->visitSummaries(
                [&](const FoundPoint& point) {
                    found.emplace_back(point.id);
                    return parts;
                },
                [&found](const PointSummary& summary) { found.back() += inQuarters(summary); });
        return found;
    }

    // Times and values in quarters of a day.
    static std::string inQuarters(const PointSummary& summary)
    {
        const auto value = [](const std::optional<double>& number) {
            return number ? std::to_string(static_cast<Instant>(*number) * 4 / day) : "-";
        };
        return " latest " +
               (summary.latest ? std::to_string(summary.latest->time * 4 / day) + summary.latest->timeFlag
                               : "-") +
               " earliest " + value(summary.earliest) + " days " + value(summary.smallest) + ".." +
               value(summary.largest);
    }

    std::vector<std::int64_t> keys;
};

TEST_P(PointSelections, DaysOfAPeriodEndWithItsLastSample)
{
    fillTwo();
    EXPECT_THAT(days("{}"), ElementsAre("0:3", "1:7", "2:11", "3:15"));
    EXPECT_THAT(days(R"({"time":{"$gte":"1970-01-02T18:00:00Z","$lt":"1970-01-03T18:00:00Z"}})"),
                ElementsAre("1:7", "2:9"));
    EXPECT_THAT(days(R"({"time":{"$gte":"1970-01-02T18:00:00.001Z","$lt":"1970-01-03T06:00:00Z"}})"),
                IsEmpty());
}

TEST_P(PointSelections, DaysOfOtherConditionsAreThoseOfTheirSamples)
{
    fillTwo();
    EXPECT_THAT(days(R"({"data.timeFlag":"A"})"), ElementsAre("0:1", "1:5", "2:9", "3:13"));
    EXPECT_THAT(
        days(R"({"data.timeFlag":{"$regex":"a","$options":"i"},"time":{"$gt":"1970-01-03T00:00:00Z"}})"),
        ElementsAre("2:9", "3:13"));
}

TEST_P(PointSelections, SummariesHaveWhatIsAskedFor)
{
    fillTwo();
    EXPECT_THAT(summaries("{}", {true, true, true}),
                ElementsAre("S1 latest 15B earliest 1 days 3..15", "S2 latest - earliest - days -..-"));
    EXPECT_THAT(summaries("{}", {false, true, false}),
                ElementsAre("S1 latest - earliest 1 days -..-", "S2 latest - earliest - days -..-"));
    EXPECT_THAT(summaries("{}", {}),
                ElementsAre("S1 latest - earliest - days -..-", "S2 latest - earliest - days -..-"));
}

TEST_P(PointSelections, OnlyTheLatestSampleOfASummaryIsAChosenOne)
{
    fillTwo();
    const SummaryParts all{true, true, true};
    EXPECT_THAT(summaries(R"({"data.timeFlag":"A"})", all),
                ElementsAre("S1 latest 13A earliest 1 days 3..15"));
    EXPECT_THAT(
        summaries(R"({"time":{"$lt":"1970-01-02T18:00:00Z"},"data.timeFlag":{"$regex":"^[AB]"}})", all),
        ElementsAre("S1 latest 5A earliest 1 days 3..15"));
    EXPECT_THAT(summaries(R"({"name":"S2"})", all), ElementsAre("S2 latest - earliest - days -..-"));
}

TEST_P(PointSelections, EachPointIsAskedForItsOwnParts)
{
    fillTwo();
    write([&](Session& session) { insertPoint(session, "S3", "", {{day, 1, std::nullopt, 7, "C"}}); });
    const auto session = store->read();
    const Where where;
    DocumentQuery page = query(where);
    page.order = parseOrder("-name");
    page.limit = 2;
    std::vector<std::string> told;
    session->measurements().select(page)->visitSummaries(
        [&](const FoundPoint& point) {
            told.emplace_back(point.name);
            return SummaryParts{point.name == "S3", false, point.name != "S3"};
        },
        [&](const PointSummary& summary) {
            told.back() += summary.latest ? summary.latest->timeFlag : std::string("-");
            told.back() += summary.largest ? "+" : "-";
        });
    EXPECT_THAT(told, ElementsAre("S3C-", "S2--"));
}

TEST_P(PointSelections, SamplesOfPointsThatAreNotWantedAreLeftOut)
{
    fillTwo();
    const auto session = store->read();
    const Where where;
    std::vector<std::string> seen;
    const auto note = [&seen](bool isWanted) {
        return [&seen, isWanted](const FoundPoint& point) {
            seen.emplace_back(point.name);
            return isWanted;
        };
    };
    const auto selection = session->measurements().select(query(where));
    selection->visitSamples(note(false), [&seen](const Sample& /*sample*/) { seen.emplace_back("sample"); });
    selection->visitDays(note(false), [&seen](const DayValue& /*day*/) { seen.emplace_back("day"); });
    EXPECT_THAT(seen, ElementsAre("S1", "S2", "S1", "S2"));
    seen.clear();
    selection->visitSamples(note(true), [&seen](const Sample& /*sample*/) { seen.emplace_back("sample"); });
    EXPECT_EQ(seen.size(), 10U);
    EXPECT_EQ(seen.back(), "S2") << "a point comes before its samples";
}

TEST_P(PointSelections, VisitorMayNotCallIntoTheSession)
{
    fillTwo();
    const Where where;
    std::unique_ptr<const Session> session;
    const auto ask = [&session](const auto& /*found*/) {
        return !session->categories().list().empty();
    };
    const auto isWanted = [](const FoundPoint& /*point*/) {
        return true;
    };
    const auto failure = [&](const std::function<void(const Measurements&)>& visit) {
        session = store->read();
        return failureOf([&] { visit(session->measurements()); });
    };
    EXPECT_EQ(failure([&](const Measurements& all) { all.select(query(where))->visit(ask); }), "internal");
    EXPECT_EQ(failure([&](const Measurements& all) {
                  all.select(query(where))->visitSamples(ask, [](const Sample& /*sample*/) {});
              }),
              "internal");
    EXPECT_EQ(
        failure([&](const Measurements& all) { all.select(query(where))->visitSamples(isWanted, ask); }),
        "internal");
    EXPECT_EQ(failure([&](const Measurements& all) {
                  all.select(query(where))->visitDays(ask, [](const DayValue& /*day*/) {});
              }),
              "internal");
    EXPECT_EQ(failure([&](const Measurements& all) { all.select(query(where))->visitDays(isWanted, ask); }),
              "internal");
    EXPECT_EQ(failure([&](const Measurements& all) { all.visitSamples(keys[0], 0, day, ask); }), "internal");
    EXPECT_EQ(failure([&](const Measurements& all) { all.visitDays(keys[0], 0, 1, ask); }), "internal");
    EXPECT_EQ(failure([&](const Measurements& all) { all.visitPoints("c", "s", "S1", ask); }), "internal");
}

TEST_P(PointSelections, WhatAConditionThrowsArrivesAndLeavesTheSessionUsable)
{
    fillTwo();
    write([this](Session& session) {
        session.measurements().insertSample(keys[1], utcDayOf(5 * day),
                                            {5 * day, 1, std::nullopt, 1, std::string(40, 'a') + "!"}, 0);
    });
    const auto session = store->read();
    {
        const Where slow = Where::parse(R"({"data.timeFlag":{"$regex":"^(a+)+$"}})");
        EXPECT_THROW(session->measurements().select(query(slow))->count(), QueryError);
    }
    const Where uuid =
        Where::parse(R"({"uuid":"m1","data.timeFlag":{"$regex":"!$"},"data.value":{"$gte":1}})");
    EXPECT_EQ(session->measurements().select(query(uuid))->count(), 1U);
}

TEST_P(PointSelections, WhatAVisitorThrowsEndsTheVisitAlone)
{
    struct Enough
    {
    };
    fillTwo();
    const auto enough = [](const auto& /*found*/) {
        throw Enough();
    };
    const auto want = [](const FoundPoint& /*point*/) {
        return true;
    };
    const auto refuse = [](const FoundPoint& /*point*/) -> bool {
        throw Enough();
    };
    const auto session = store->write();
    for (const char* const condition :
         {"{}", R"({"time":{"$gte":"1970-01-01T00:00:00Z"}})", R"({"uuid":"m1"})"}) {
        const Where where = Where::parse(condition);
        const auto select = [&] {
            return session->measurements().select(query(where));
        };
        EXPECT_THROW(select()->visit(enough), Enough);
        EXPECT_THROW(select()->visitSamples(refuse, enough), Enough);
        EXPECT_THROW(select()->visitSamples(want, enough), Enough);
        EXPECT_THROW(select()->visitDays(refuse, enough), Enough);
        EXPECT_THROW(select()->visitDays(want, enough), Enough);
        EXPECT_THROW(select()->visitSummaries(
                         [](const FoundPoint& /*point*/) {
                             return SummaryParts{true, true, true};
                         },
                         enough),
                     Enough);
    }
    session->categories().add("Inclinometer");
    session->commit();
    EXPECT_THAT(days("{}"), ::testing::SizeIs(4));
    EXPECT_TRUE(store->read()->categories().contains("Inclinometer"));
}

TEST_P(PointSelections, PointsOutOfReachCostNoSteps)
{
    write([this](Session& session) {
        session.categories().add("Inclinometer");
        insertPoint(session, "S1", "", {{day, 1, std::nullopt, 1, std::string(40, 'a') + "!"}});
    });
    const auto session = store->read();
    const Where slow = Where::parse(R"({"data.timeFlag":{"$regex":"^(a+)+$"}})");
    DocumentQuery beside = query(slow);
    beside.categories = {"Inclinometer"};
    EXPECT_EQ(session->measurements().select(beside)->count(), 0U);
    beside.categories = std::vector<std::string>();
    EXPECT_EQ(session->measurements().select(beside)->count(), 0U);
}

TEST_P(PointSelections, OrderByUnknownOrTheSameIsRefused)
{
    fillTwo();
    const auto session = store->read();
    const auto refusal = [&session](const Where& where, const char* order) -> std::string {
        DocumentQuery ordered = query(where);
        ordered.order = parseOrder(order);
        try {
            session->measurements().select(ordered)->count();
        } catch (const QueryError& error) {
            EXPECT_EQ(error.status(), 400);
            return error.what();
        }
        return "not refused";
    };
    EXPECT_EQ(refusal({}, "alias"), "order: cannot order by \"alias\"");
    EXPECT_EQ(refusal({}, "lastDate,-data.time"), "order: \"-data.time\" orders by the same field again");
    EXPECT_EQ(refusal(Where::equals("data.timeFlag", "A"), "lastDate,-data.time"), "not refused")
        << "the newest chosen sample is not the last one";
}

// A point as a test knows it.
struct Known
{
    std::string id;
    std::string depth;
    std::string document; // what conditions on a point are asked of
    std::vector<Sample> samples;
};

// Conditions on points and on samples.
const std::vector<std::string> ofPoints{R"("name":"S1")",
                                        R"("name":{"$regex":"2$"})",
                                        R"("depth":{"$in":["2.5","10"]})",
                                        R"("uuid":"m1")",
                                        R"("entity.rId":{"$ne":"m1"})",
                                        R"("data.value":{"$gte":800})",
                                        R"("category":"Settlement")",
                                        R"("lastDate":{"$gte":"1970-01-02T00:00:00Z"})"};
const std::vector<std::string> ofSamples{
    R"("data.timeFlag":"A")",
    R"("data.timeFlag":{"$ne":"A"})",
    R"("data.timeFlag":{"$regex":"^[bc]","$options":"i"})",
    R"("time":{"$gte":"1970-01-02T06:00:00Z"})",
    R"("time":{"$gte":"1970-01-01T12:00:00Z","$lt":"1970-01-03T09:00:00Z"})",
    R"("time":{"$gt":"1970-01-02T06:00:00Z"})",
    R"("time":{"$lte":"1970-01-03T06:00:00+06:00"})",
    R"("time":{"$regex":"T0"})"};

class ModelledSelections : public PointSelections
{
protected:
    void fill(Chance& chance)
    {
        write([&](Session& session) {
            for (const char* const name : {"S1", "S2", "s2", "\xef\xbd\x9e", "\xf0\x9f\x98\x80"}) {
                for (const char* const depth : {"", "10", "2.5"}) {
                    std::map<std::pair<Instant, std::int32_t>, Sample> samples;
                    for (std::size_t i = chance.below(14); i > 0; --i) {
                        const Instant time = static_cast<Instant>(chance.below(16)) * day / 4 +
                                             static_cast<Instant>(chance.below(2));
                        const auto count = static_cast<std::int32_t>(chance.below(2));
                        samples[{time, count}] = {time, count,
                                                  chance.once(2) ? std::optional(60) : std::nullopt,
                                                  static_cast<double>(chance.below(1000)),
                                                  chance.of(std::vector<std::string>{"A", "B", "c", ""})};
                    }
                    std::vector<Sample> list;
                    for (const auto& [key, sample] : samples) {
                        list.push_back(sample);
                    }
                    add(session, name, depth, list, chance.once(2) ? "m1" : "m2");
                }
            }
        });
    }

    void add(Session& session, const std::string& name, const std::string& depth,
             const std::vector<Sample>& samples, const std::string& link)
    {
        const std::string links = R"([{"type":"model","rId":")" + link + "\"}]";
        insertPoint(session, name, depth, samples, links);
        std::string texts;
        for (const Sample& sample : samples) {
            texts += texts.empty() ? "" : ",";
            appendSample(texts, sample);
        }
        std::string document =
            pointDocument(name, depth, samples.empty() ? "" : isoText(samples.back().time), links);
        document.pop_back();
        document += R"(,"category":"Settlement","entity":)" + links + R"(,"uuid":[")" + link +
                    R"("],"data":[)" + texts + "]}";
        points.push_back({name + depth, depth, document, samples});
    }

    // The samples of each point that the condition chooses, by identifier; points without any are left out
    // when it asks for samples.
    std::map<std::string, std::vector<Sample>> chosen(const Where& where) const
    {
        const auto [samplesWhere, pointsWhere] = where.split({"time", "data.timeFlag"});
        simdjson::dom::parser parser;
        std::map<std::string, std::vector<Sample>> found;
        for (const Known& point : points) {
            if (!Matcher(pointsWhere).matches(parser.parse(point.document))) {
                continue;
            }
            std::vector<Sample> samples;
            for (const Sample& sample : point.samples) {
                const std::string asked = R"({"time":")" + isoText(sample.time, sample.offsetMinutes) +
                                          R"(","data":{"timeFlag":")" + sample.timeFlag + "\"}}";
                if (Matcher(samplesWhere).matches(parser.parse(asked))) {
                    samples.push_back(sample);
                }
            }
            if (samplesWhere.isEmpty() || !samples.empty()) {
                found[point.id] = samples;
            }
        }
        return found;
    }

    // What the samples of a point come to: the latest is of those that were chosen, the rest of all.
    PointSummary summaryOf(const std::string& id,
                           const std::map<std::string, std::vector<Sample>>& found) const
    {
        const auto known =
            std::find_if(points.begin(), points.end(), [&id](const Known& point) { return point.id == id; });
        PointSummary summary;
        if (const std::vector<Sample>& samples = found.at(id); !samples.empty()) {
            summary.latest = samples.back();
        }
        std::map<std::int64_t, double> days;
        for (const Sample& sample : known->samples) {
            days[sample.time / day] = sample.value;
        }
        for (const auto& [number, value] : days) {
            summary.smallest = std::min(summary.smallest.value_or(value), value);
            summary.largest = std::max(summary.largest.value_or(value), value);
        }
        if (!known->samples.empty()) {
            summary.earliest = known->samples.front().value;
        }
        return summary;
    }

    // The identifiers as an order by the newest chosen sample, a depth as a number or a name gives them.
    std::vector<std::string> ordered(const std::map<std::string, std::vector<Sample>>& found,
                                     const std::string& order) const
    {
        struct Key
        {
            std::optional<double> number;
            std::string id;
        };
        std::vector<Key> ranks;
        for (const Known& point : points) {
            const auto samples = found.find(point.id);
            if (samples == found.end()) {
                continue;
            }
            Key key{std::nullopt, point.id};
            if (order == "-data.time" && !samples->second.empty()) {
                key.number = static_cast<double>(samples->second.back().time);
            } else if (order == "depth") {
                key.number = point.depth.empty() ? 0 : std::stod(point.depth);
            }
            ranks.push_back(key);
        }
        const bool descending = order.front() == '-';
        std::sort(ranks.begin(), ranks.end(), [descending](const Key& left, const Key& right) {
            return left.number != right.number ? (left.number < right.number) != descending
                                               : left.id < right.id;
        });
        std::vector<std::string> ids;
        for (const Key& key : ranks) {
            ids.push_back(key.id);
        }
        return ids;
    }

    std::vector<Known> points;
};

TEST_P(ModelledSelections, PointsSamplesAndDaysAreThoseThatTheMatcherChooses)
{
    Chance chance(20151221);
    fill(chance);
    const auto session = store->read();
    std::size_t nonEmpty = 0;
    for (int round = 0; round < 250; ++round) {
        std::string json = "{";
        for (std::size_t i = chance.below(3); i > 0; --i) {
            json += (json.size() > 1 ? "," : "") + chance.of(i == 1 ? ofPoints : ofSamples);
        }
        if (chance.once(2)) {
            const std::string more = chance.of(ofSamples);
            const bool isThere = json.find(more.substr(0, 6)) != std::string::npos;
            json += isThere ? "" : (json.size() > 1 ? "," : "") + more;
        }
        json += "}";
        SCOPED_TRACE(json);
        const Where where = Where::parse(json);
        const auto expected = chosen(where);
        nonEmpty += expected.empty() ? 0 : 1;
        const std::string order = chance.of(std::vector<std::string>{"_id", "-data.time", "depth"});
        const std::vector<std::string> expectedIds = ordered(expected, order);

        DocumentQuery page = query(where);
        page.order = parseOrder(order);
        ASSERT_EQ(session->measurements().select(page)->count(), expected.size());
        std::vector<std::string> ids;
        std::map<std::string, std::vector<Sample>> samples;
        const auto begin = [&](const FoundPoint& point) {
            ids.emplace_back(point.id);
            samples[ids.back()];
            return true;
        };
        session->measurements().select(page)->visitSamples(
            begin, [&](const Sample& sample) { samples[ids.back()].push_back(sample); });
        ASSERT_EQ(ids, expectedIds) << order;
        for (const auto& [id, ofPoint] : expected) {
            ASSERT_EQ(samples[id].size(), ofPoint.size()) << id;
            for (std::size_t i = 0; i < ofPoint.size(); ++i) {
                ASSERT_EQ(textOf(samples[id][i]), textOf(ofPoint[i])) << id;
            }
        }

        ids.clear();
        std::map<std::string, std::vector<std::string>> days;
        session->measurements().select(page)->visitDays(begin, [&](const DayValue& value) {
            days[ids.back()].push_back(std::to_string(value.day) + ' ' + std::to_string(value.time) + ' ' +
                                       std::to_string(value.count) + ' ' + std::to_string(value.value));
        });
        ASSERT_EQ(ids, expectedIds) << order;
        for (const auto& [id, ofPoint] : expected) {
            std::map<std::int64_t, std::string> last;
            for (const Sample& sample : ofPoint) {
                last[sample.time / day] = std::to_string(sample.time / day) + ' ' +
                                          std::to_string(sample.time) + ' ' + std::to_string(sample.count) +
                                          ' ' + std::to_string(sample.value);
            }
            std::vector<std::string> ofDays;
            for (const auto& [number, text] : last) {
                ofDays.push_back(text);
            }
            ASSERT_EQ(days[id], ofDays) << id;
        }

        ids.clear();
        session->measurements().select(page)->visitSummaries(
            [&](const FoundPoint& point) {
                ids.emplace_back(point.id);
                return SummaryParts{true, true, true};
            },
            [&](const PointSummary& summary) {
                ASSERT_EQ(textOf(summary), textOf(summaryOf(ids.back(), expected))) << ids.back();
            });
        ASSERT_EQ(ids, expectedIds) << order;

        page.skip = chance.below(4);
        page.limit = chance.below(5);
        ids.clear();
        session->measurements().select(page)->visit(
            [&ids](const FoundPoint& point) { ids.emplace_back(point.id); });
        const std::size_t from = std::min<std::size_t>(page.skip, expectedIds.size());
        const std::size_t to = std::min<std::size_t>(from + page.limit, expectedIds.size());
        ASSERT_EQ(ids, std::vector<std::string>(expectedIds.begin() + static_cast<std::ptrdiff_t>(from),
                                                expectedIds.begin() + static_cast<std::ptrdiff_t>(to)));
    }
    EXPECT_GT(nonEmpty, 100U);
}

RK_EVERY_STORE(PointSelections);
RK_EVERY_STORE(ModelledSelections);

} // namespace
} // namespace monitorservice::test
