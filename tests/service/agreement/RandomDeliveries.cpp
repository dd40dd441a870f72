#include "RandomDeliveries.h"

#include "json/JsonText.h"

#include <set>
#include <utility>
#include <vector>

namespace monitorservice::test {

namespace {

constexpr Instant minute = 60'000;
constexpr Instant hour = 60 * minute;
constexpr Instant day = 24 * hour;

// Depths that are one number in several spellings, no number, or beyond what a number can be.
const std::vector<std::string> depths{"",      "",       "",       "0.5", "1",
                                      "1.0",   "01.50",  "10",     "2.5", "-2.5",
                                      "+2.5",  ".5",     "abc",    " 3",  "1e3",
                                      "-0",    "0x10",   "5 m",    "é",   "inf",
                                      "1e400", "1e-400", "-1e400", "nan", "0.12345678901234567890123",
                                      "\\t7"};

const std::vector<std::string> flags{"A", "A", "A", "B", "", "Grüße", "2015-10-25T00:00:00Z", "\\u0001"};

const std::vector<std::string> exactNumbers{"0",
                                            "-0.0",
                                            "1",
                                            "-1",
                                            "12.5",
                                            "0.1",
                                            "99.99",
                                            "1e-7",
                                            "7.25",
                                            "1e300",
                                            "123456789012",
                                            "0.30000000000000004",
                                            "5e-324",
                                            "2.5",
                                            "-7.5",
                                            "100",
                                            "0.12345678901234567890123"};

// What makes a delivery wrong: a member of a point or of a sample.
const std::vector<std::string> wrongMembers{
    R"("name":"")",   R"("depth":5)",          R"("dataType":2147483648)",
    R"("unknown":1)", R"("alias":"a\u0000")",  R"("links":[{"rId":"m"}])",
    R"("data":{})",   R"("initialValue":"1")", R"("projectId":"none")"};
const std::vector<std::string> wrongSamples{R"({"count":1,"time":"2015-10-25T00:00:00Z"})",
                                            R"({"count":1.5,"time":"2015-10-25T00:00:00Z","value":1})",
                                            R"({"count":1,"time":"2015-10-25","value":1})",
                                            R"({"count":1,"time":"2015-10-25T00:00:00Z","value":1e400})",
                                            R"({"count":2147483648,"time":"2015-10-25T00:00:00Z","value":1})",
                                            "5"};
const std::vector<std::string> wrongBodies{"",          "{}",   "[",    "[[]", "[5]",
                                           "[[{}],{}]", "[{}]", "null", "[]",  "[[]]"};

} // namespace

const std::vector<std::string>& pointNames()
{
    static const std::vector<std::string> names{"S1",
                                                "S2",
                                                "S10",
                                                "s1",
                                                "é",
                                                "\\u00e9",
                                                "2015-10-25T00:00:00Z",
                                                "a\\\"b'c",
                                                std::string(40, 'a') + "!"};
    return names;
}

std::string RandomDeliveries::any(Instant now)
{
    if (m_chance.once(25)) {
        return m_chance.of(wrongBodies);
    }
    if (!m_latest.empty() && m_chance.once(12)) {
        return m_latest;
    }
    if (m_chance.once(60)) {
        return ofManyPoints(now);
    }
    std::string body;
    const bool isNested = m_chance.once(4);
    for (std::size_t left = 1 + m_chance.below(m_chance.once(4) ? 12 : 3); left > 0; --left) {
        const bool isNext = isNested && m_chance.once(3);
        body += body.empty() ? "" : isNext ? "],[" : ",";
        body += point(now);
    }
    m_latest = isNested ? "[[" + body + "]]" : "[" + body + "]";
    return m_latest;
}

std::string RandomDeliveries::anyLinks()
{
    static const std::vector<std::string> types{"model", "model", "Grüße", "view"};
    static const std::vector<std::string> identifiers{"m1", "m2", "m3", "😀"};
    std::string links;
    for (std::size_t left = m_chance.below(4); left > 0; --left) {
        links += links.empty() ? "" : ",";
        links += R"({"type":")" + m_chance.of(types) + "\"";
        links += m_chance.once(6) ? "}" : R"(,"rId":")" + m_chance.of(identifiers) + "\"}";
    }
    return "[" + links + "]";
}

std::string RandomDeliveries::anyNumber()
{
    if (m_chance.once(4)) {
        return m_chance.of(exactNumbers);
    }
    // A tenth or a thousandth is hardly ever exact, and most readings lie close together.
    std::string number = std::to_string(m_chance.below(60));
    if (!m_chance.once(3)) {
        number += '.' + std::to_string(m_chance.below(m_chance.once(3) ? 1'000'000 : 10));
    }
    return m_chance.once(5) ? "-" + number : number;
}

// More of them than a store looks at together.
std::string RandomDeliveries::ofManyPoints(Instant now)
{
    constexpr int points = 450;
    const Place cell = m_seen.anyPlace("cells");
    const std::string begin = R"({"cellId":")" + cell.id + R"(","subCategoryId":")" +
                              m_seen.subCategoryOf(cell).id + R"(","name":"Row","depth":")";
    std::string body;
    for (int depth = 0; depth < points; ++depth) {
        body += (body.empty() ? "[" : ",") + begin + std::to_string(depth) + R"(","data":[)" +
                sample(now, "1") + "]}";
    }
    return body + "]";
}

std::string RandomDeliveries::point(Instant now)
{
    const Place cell = m_seen.anyPlace("cells");
    const Place subCategory =
        m_chance.once(30) ? m_seen.anyPlace("subCategories") : m_seen.subCategoryOf(cell);
    std::string json = R"({"cellId":")" + cell.id + R"(","subCategoryId":")" + subCategory.id + "\"";
    json += R"(,"name":")" + m_chance.of(pointNames()) + "\"";
    if (!m_chance.once(3)) {
        json += R"(,"depth":")" + m_chance.of(depths) + "\"";
    }
    if (m_chance.once(4)) {
        json += ",\"initialValue\":" + anyNumber();
    }
    if (m_chance.once(4)) {
        json += ",\"links\":" + anyLinks();
    }
    if (m_chance.once(6)) {
        json += R"(,"alias":"Alias","dataType":7,"offsetDirection":"X","fileId":"file.csv")";
    }
    if (m_chance.once(50)) {
        json += "," + m_chance.of(wrongMembers);
    }
    return json + ",\"data\":[" + samples(now) + "]}";
}

std::string RandomDeliveries::samples(Instant now)
{
    static const std::vector<Instant> begins{
        1445724000000, // 2015-10-25T00:00+02:00 in Vienna, the day with 25 hours
        1445731200000, // when its clocks are put back
        1459036800000, // 2016-03-27T00:00Z, the day with 23 hours
        1445823000000, // 2015-10-25T23:00-02:30 in St. John's
        0};
    static const std::vector<Instant> steps{0, 1, 500, minute, 10 * minute, hour, 7 * hour, day, -hour, -day};
    Instant time =
        m_chance.once(4) ? now : m_chance.of(begins) + static_cast<Instant>(m_chance.below(8)) * hour;
    const Instant step = m_chance.of(steps);
    // More than a segment of the database holds, now and then.
    const std::size_t number = m_chance.once(15) ? 100 + m_chance.below(300) : m_chance.below(8);
    std::string json;
    std::set<std::pair<Instant, std::string>> sent;
    for (std::size_t i = 0; i < number; ++i) {
        const std::string count = anyCount(step == 0 || m_chance.once(10) ? i : 1);
        // One that contradicts another one of the same delivery makes all of it wrong.
        if (sent.emplace(time, count).second || m_chance.once(200)) {
            json += json.empty() ? "" : ",";
            json += sample(time, count);
        }
        time += m_chance.once(10) ? m_chance.of(steps) : step == 0 ? 0 : step;
    }
    return json;
}

std::string RandomDeliveries::anyCount(std::size_t usual)
{
    static const std::vector<std::string> others{"2147483647", "-2147483648", "-1"};
    return m_chance.once(60) ? m_chance.of(others) : std::to_string(usual);
}

std::string RandomDeliveries::sample(Instant time, const std::string& count)
{
    if (m_chance.once(1500)) {
        return m_chance.of(wrongSamples);
    }
    std::string json = "{\"count\":" + count + R"(,"time":")" + spelt(time) + "\",\"value\":" + anyNumber();
    if (!m_chance.once(4)) {
        json += R"(,"timeFlag":")" + m_chance.of(flags) + "\"";
    }
    return json + "}";
}

std::string RandomDeliveries::spelt(Instant time)
{
    static const std::vector<int> offsets{0, 60, 120, -210, -150, 840, -840, 345};
    std::string text = isoText(time, m_chance.once(2) ? std::optional<int>() : m_chance.of(offsets));
    constexpr std::size_t beginOfFraction = 19;
    constexpr std::size_t endOfFraction = 23;
    if (m_chance.once(10)) {
        text.insert(endOfFraction, "9876");
    } else if (m_chance.once(4) && text.compare(beginOfFraction, 4, ".000") == 0) {
        text.erase(beginOfFraction, 4);
    }
    if (m_chance.once(6) && text.back() != 'Z') {
        text.erase(text.size() - 3, 1); // the colon of the offset
    }
    return text;
}

} // namespace monitorservice::test
