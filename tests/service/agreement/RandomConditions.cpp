#include "RandomConditions.h"

#include "json/JsonText.h"
#include "time/Instant.h"
#include "time/Timestamp.h"

#include <map>
#include <vector>

namespace monitorservice::test {

namespace {

const std::vector<std::string> oddPaths{
    "category", "uuid",        "entity",        "entity.rId",    "entity.type", "time",
    "data",     "data.value",  "data.timeFlag", "data.time",     "data.count",  "data.0.value",
    "depth",    "data.1.time", "subCategory",   "subCategory.1", "name",        "_id",
    "links",    "links.0.rId", "alarmTo.0",     "createdAt",     "missing",     "missing.further"};

const std::vector<std::string> wrongPaths{"", "a..b", "$x", ".", "a.b.c.d.e.f.g.h.i", "a\\u0000b"};

const std::vector<std::string> oddOperands{"null",
                                           "true",
                                           "false",
                                           "5",
                                           "5.0",
                                           "-0.0",
                                           "0",
                                           "1e300",
                                           "9007199254740993",
                                           "18446744073709551615",
                                           R"("")",
                                           R"("a\u0000b")",
                                           R"("\u0000")",
                                           R"("\\u0000")",
                                           R"("5")",
                                           R"("é")",
                                           R"("\u00e9")",
                                           R"("😀")",
                                           R"("\ufffd")",
                                           R"("'")",
                                           R"("%")",
                                           R"("\\")",
                                           R"("Settlement")",
                                           "[]",
                                           "{}",
                                           R"(["a"])",
                                           R"({"type":"model","rId":"m1"})"};

const std::vector<std::string> wrongOperands{"1e400", R"({"$gt":1})", "99999999999999999999999",
                                             R"({"a":{"$in":[]}})", "nothing"};

const std::vector<std::string> patterns{
    "^(a+)+$", "^S", "1$",      ".",       "S1|S2", "T0[0-9]", "é",      "grü",    "^$", "[0-9]{2}", "\\\\d$",
    "x*",      "😀",  "\\u0000", "\\\\x00", "\\\\.", "^(?i)s",  "\\\\bA", "^.{3}$", "Z$", "z"};

const std::vector<std::string> wrongPatterns{"(", "[", "*", "\\\\C", "a{99999}"};

const std::vector<std::string> comparisons{"$gt", "$gte", "$lt", "$lte"};

const std::vector<std::string> options{"", "i", "i", "m", "s", "x", "ims", "g"};

const std::vector<std::string> wrongConditions{
    R"({"$foo":1})",      R"({"$in":1})",         R"({"$exists":1})",
    R"({"$regex":1})",    R"({"$options":"i"})",  R"({"$in":[{"$gt":1}]})",
    R"({"$gt":1,"a":2})", R"({"$gt":1,"$gt":2})", R"({"$nin":{}})"};

const std::vector<std::string> wrongDocuments{
    "{", "[]", "", "null", R"({"a":1,"a":2})", R"({"a":1}})", "{\"a\":\"\xc3\"}", R"({"$or":[{"a":1}]})"};

// The paths that each list is ordered by, some of them.
const std::map<std::string, std::vector<std::string>> orderPaths{
    {"cells", {"_id", "name", "category", "createdAt", "createdBy", "updatedAt", "updatedBy"}},
    {"subCategories", {"_id", "name", "category", "alias"}},
    {"groupSettings", {"_id", "cellId", "groupName"}},
    {"pointLocations", {"_id", "cellId", "name", "depth", "depth", "lastDate", "data.time", "data.time"}},
    {"dataManages", {"_id", "createdAt", "updatedAt"}},
    {"historyDatas", {"_id"}},
    {"alarmManages", {"_id", "createdAt"}},
    {"alarmDetails", {"_id", "pointName"}},
    {"threeDetails", {"_id", "depth"}},
    {"changes", {"_id", "createdAt", "createdBy", "action"}},
    {"projects", {"_id", "name", "timeZone"}}};

} // namespace

std::string RandomConditions::any(const std::string& kind)
{
    if (m_chance.once(60)) {
        return m_chance.of(wrongDocuments);
    }
    std::vector<std::string> members;
    for (std::size_t left = m_chance.below(4); left > 0; --left) {
        const std::string one = path(kind);
        members.push_back('"' + one + "\":" + condition(kind, one));
    }
    return object(members);
}

std::string RandomConditions::anyOfSamples()
{
    const std::string kind = "pointLocations";
    std::vector<std::string> members;
    if (!m_chance.once(4)) {
        const std::string one = anyTime();
        const std::string other = anyTime();
        switch (m_chance.below(3)) {
        case 0:
            members.push_back(R"("time":{"$gte":)" + one + R"(,"$lt":)" + other + "}");
            break;
        case 1:
            members.push_back(R"("time":{")" + m_chance.of(comparisons) + "\":" + one + "}");
            break;
        default:
            members.push_back("\"time\":" + condition(kind, "data.time"));
        }
    }
    if (m_chance.once(3)) {
        members.push_back("\"data.timeFlag\":" + condition(kind, "data.timeFlag"));
    }
    if (m_chance.once(3)) {
        const std::string one = path(kind);
        if (one != "time" && one != "data.timeFlag") {
            members.push_back('"' + one + "\":" + condition(kind, one));
        }
    }
    return object(members);
}

std::string RandomConditions::anyOfOneSample()
{
    const std::string kind = "pointLocations";
    static const std::vector<std::string> members{"time", "count", "value", "timeFlag"};
    const std::string member = m_chance.of(members);
    const std::string operand =
        m_chance.once(10) ? m_chance.of(oddOperands) : m_seen.anyValue(kind, "data." + member);
    switch (m_chance.below(3)) {
    case 0:
        return R"({")" + member + R"(":{")" + m_chance.of(comparisons) + "\":" + operand + "}}";
    case 1:
        return R"({")" + member + "\":" + condition(kind, "data." + member) + "}";
    default:
        return R"({")" + member + "\":" + operand + "}";
    }
}

std::string RandomConditions::anyOrder(const std::string& kind)
{
    if (m_chance.once(15)) {
        return m_chance.once(3) ? "name,,_id" : "-" + m_seen.anyPath(kind);
    }
    const auto paths = orderPaths.find(kind);
    if (paths == orderPaths.end()) {
        return "_id";
    }
    std::string order;
    for (std::size_t left = 1 + m_chance.below(2); left > 0; --left) {
        order += order.empty() ? "" : ",";
        order += (m_chance.once(2) ? "-" : "") + m_chance.of(paths->second);
    }
    return order;
}

std::string RandomConditions::path(const std::string& kind)
{
    if (m_chance.once(100)) {
        return m_chance.of(wrongPaths);
    }
    return m_chance.once(4) ? m_chance.of(oddPaths) : m_seen.anyPath(kind);
}

std::string RandomConditions::operand(const std::string& kind, const std::string& path)
{
    if (m_chance.once(200)) {
        return m_chance.of(wrongOperands);
    }
    if (m_chance.once(8)) {
        return m_chance.of(oddOperands);
    }
    if (m_chance.once(10)) {
        return anyTime();
    }
    // Its own value mostly; and now and then that of another member.
    return m_seen.anyValue(kind, m_chance.once(12) ? m_seen.anyPath(kind) : path);
}

std::string RandomConditions::condition(const std::string& kind, const std::string& path)
{
    if (m_chance.once(100)) {
        return m_chance.of(wrongConditions);
    }
    const std::string one = operand(kind, path);
    const std::string other = operand(kind, path);
    const std::string comparison = m_chance.of(comparisons);
    switch (m_chance.below(10)) {
    case 0:
        return R"({"$ne":)" + one + "}";
    case 1:
        return R"({"$in":[)" + one + "," + other + "]}";
    case 2:
        return R"({"$nin":[)" + one + "," + other + "]}";
    case 3:
        return R"({"$gte":)" + one + R"(,"$lt":)" + other + "}";
    case 4:
    case 5:
        return R"({")" + comparison + "\":" + one + "}";
    case 6:
        return std::string(R"({"$exists":)") + (m_chance.once(2) ? "true" : "false") + "}";
    case 7:
        return R"({"$regex":")" + pattern(one) + R"(","$options":")" + m_chance.of(options) + "\"}";
    default:
        return one;
    }
}

std::string RandomConditions::pattern(const std::string& value)
{
    if (m_chance.once(30)) {
        return m_chance.of(wrongPatterns);
    }
    // The beginning of a text that is there.
    if (m_chance.once(2) && value.size() > 4 && value.front() == '"' &&
        value.find_first_of("\\(*[?+|") == std::string::npos) {
        const bool isWhole = static_cast<unsigned char>(value[4]) < 0x80;
        return isWhole ? "^" + value.substr(1, 3) : m_chance.of(patterns);
    }
    return m_chance.of(patterns);
}

// Of a sample mostly, in another spelling or a little beside it.
std::string RandomConditions::anyTime()
{
    const std::string seen = m_seen.anyValue("pointLocations", "data.time");
    const std::optional<Timestamp> time =
        seen.size() > 2 ? parseTimestamp(std::string_view(seen).substr(1, seen.size() - 2)) : std::nullopt;
    if (!time || m_chance.once(20)) {
        static const std::vector<std::string> others{R"("2015-10-25T00:00:00+02:00")",
                                                     R"("2015-10-25T01:00:00Z")",
                                                     R"("2015-10-26")",
                                                     R"("0000-01-01T00:00:00Z")",
                                                     R"("9999-12-31T23:59:59.999Z")",
                                                     R"("2016-02-30T00:00:00Z")",
                                                     "1445731200000",
                                                     "null"};
        return m_chance.of(others);
    }
    static const std::vector<Instant> steps{0, 0, 0, 1, -1, 60'000, -3'600'000, 86'400'000};
    static const std::vector<int> offsets{0, 60, 120, -150, 840};
    std::string text = isoText(time->milliseconds + m_chance.of(steps),
                               m_chance.once(2) ? std::optional<int>() : m_chance.of(offsets));
    constexpr std::size_t endOfFraction = 23;
    if (m_chance.once(4)) {
        text.insert(endOfFraction, m_chance.once(2) ? "0001" : "000");
    }
    return '"' + text + '"';
}

std::string RandomConditions::object(const std::vector<std::string>& members) const
{
    std::string json = "{";
    for (const std::string& member : members) {
        json += (json.size() > 1 ? "," : "") + member;
    }
    return json + "}";
}

} // namespace monitorservice::test
