#include "RandomRequests.h"

namespace monitorservice::test {

namespace {

// As JSON writes them.
const std::vector<std::string> names{"Tower",
                                     "tower",
                                     "Wall 1",
                                     "Wall 10",
                                     "Grüße",
                                     "é",
                                     "\\u0065\\u0301",
                                     "😀",
                                     "o'clock",
                                     "\\\\u0000",
                                     "2015-10-25T00:00:00Z",
                                     "",
                                     "a\\u0000b"};

const std::vector<std::string> categories{"Settlement", "Inclinometer", "Water / level",
                                          "Ä",          "settlement",   ""};

// Lists of a project, and of what hangs on a document.
const std::vector<std::string> listsOfProjects{
    "cells", "subCategories", "groupSettings", "pointLocations", "dataManages", "alarmManages", "changes"};
const std::vector<std::pair<std::string, std::string>> listsBelow{{"dataManages", "historyDatas"},
                                                                  {"alarmManages", "alarmDetails"},
                                                                  {"alarmDetails", "threeDetails"},
                                                                  {"cells", "groupSettings"}};

const std::vector<std::string> skips{
    "0", "1", "1", "2", "2", "3", "5", "18446744073709551615", "9223372036854775808", "-1"};
const std::vector<std::string> limits{
    "0", "1", "1", "2", "2", "3", "5", "1000", "1001", "18446744073709551615", "a"};

} // namespace

Question RandomRequests::next(Instant now)
{
    Question question = m_chance.below(5) < 2 ? write(now) : read();
    question.token = anyToken();
    return question;
}

void RandomRequests::learn(const Question& question, const std::string& answer)
{
    // "cells" of cells/ID and of projects/ID/cells.
    const std::string& kind = question.path.size() == 2 ? question.path.front() : question.path.back();
    if (question.method == "DELETE" && question.path.size() == 2) {
        m_seen.forget(kind, question.path.back());
    } else {
        m_seen.note(kind, answer);
    }
}

Question RandomRequests::write(Instant now)
{
    switch (m_chance.below(16)) {
    case 0:
    case 1:
        return writeCell();
    case 2:
    case 3:
        return writeGroup();
    case 4:
        return writeSubCategory();
    case 5:
        return writeCategory();
    case 6:
        return writeProject();
    default:
        return writeMeasured(now);
    }
}

Question RandomRequests::writeMeasured(Instant now)
{
    const std::string point = m_seen.anyId("pointLocations");
    switch (m_chance.below(20)) {
    case 0:
        return {"",
                "PUT",
                {"pointLocations"},
                {{"where", m_conditions.any("pointLocations")}},
                "{\"links\":" + m_deliveries.anyLinks() + "}"};
    case 1:
        return {"",
                "PATCH",
                {"pointLocations", point},
                {},
                "{\"initialValue\":" + (m_chance.once(4) ? "null" : m_deliveries.anyNumber()) +
                    (m_chance.once(3) ? R"(,"alias":")" + anyName() + "\"}" : "}")};
    case 2:
    case 3:
        return {
            "", "DELETE", {"pointLocations", point, "samples"}, {{"where", m_conditions.anyOfOneSample()}}};
    case 4:
        return {"", "DELETE", {"pointLocations", point}};
    case 5:
        return {"",
                "DELETE",
                {"dataManages", m_seen.anyId("dataManages")},
                m_chance.once(3) ? Parameters() : Parameters{{"cascade", m_chance.once(9) ? "1" : "true"}}};
    case 6:
    case 7:
        return {"",
                "DELETE",
                {"historyDatas",
                 m_chance.once(2) ? m_seen.latestId("historyDatas") : m_seen.anyId("historyDatas")}};
    default:
        return {"", "POST", {"pointLocations"}, {}, m_deliveries.any(now)};
    }
}

Question RandomRequests::writeCell()
{
    static const std::vector<std::string> recipients{
        R"(["ada@example.org"])", R"(["ada@example.org","bo@example.org"])", "[]", R"(["Ada"])"};
    const std::string id = m_seen.anyId("cells");
    std::string members = R"("name":")" + anyName() + R"(","alarmTo":)" + m_chance.of(recipients);
    members += m_chance.once(2) ? ",\"links\":" + m_deliveries.anyLinks() : "";
    switch (m_chance.below(6)) {
    case 0:
        return {"",
                "POST",
                {"cells"},
                {},
                R"({"projectId":")" + m_seen.anyId("projects") + R"(","category":")" + anyCategory() + "\"," +
                    members + "}"};
    case 1:
        return {"", "DELETE", {"cells", m_chance.once(2) ? m_seen.latestId("cells") : id}};
    default:
        return {"",
                "PUT",
                {"cells", id},
                {},
                "{" + members + (m_chance.once(4) ? R"(,"category":")" + anyCategory() + "\"}" : "}")};
    }
}

Question RandomRequests::writeGroup()
{
    const Place cell = m_seen.anyPlace("cells");
    const std::string id = m_seen.anyId("groupSettings");
    const std::string place =
        R"("cellId":")" + cell.id + R"(","subCategoryId":")" + m_seen.subCategoryOf(cell).id + "\",";
    switch (m_chance.below(5)) {
    case 0:
    case 1:
        return {"",
                "POST",
                {"groupSettings"},
                {},
                R"({"projectId":")" + cell.project + "\"," + place + groupMembers() + "}"};
    case 2:
        return {"", "DELETE", {"groupSettings", id}};
    default:
        return {"",
                "PUT",
                {"groupSettings", id},
                {},
                "{" + (m_chance.once(4) ? place : "") + groupMembers() + "}"};
    }
}

std::string RandomRequests::groupMembers()
{
    static const std::vector<std::string> sides{"both", "rising", "falling"};
    std::string points;
    for (std::size_t left = 1 + m_chance.below(4); left > 0; --left) {
        points += (points.empty() ? "\"" : ",\"") + m_chance.of(pointNames()) + "\"";
    }
    return R"("groupName":")" + anyName() + R"(","groupPoint":[)" + points + R"(],"dayVarType":)" +
           std::to_string(m_chance.below(2)) + ",\"dayVarValue\":" + std::to_string(m_chance.below(30)) +
           ",\"totalVar\":" + std::to_string(m_chance.below(40)) + R"(,"dayVarSide":")" + m_chance.of(sides) +
           R"(","totalVarSide":")" + m_chance.of(sides) + "\"";
}

Question RandomRequests::writeSubCategory()
{
    const std::string id = m_seen.anyId("subCategories");
    const std::string members = R"("name":")" + anyName() + R"(","alias":")" + anyName() + R"(","unit":"mm")";
    switch (m_chance.below(5)) {
    case 0:
        return {"", "DELETE", {"subCategories", m_seen.latestId("subCategories")}};
    case 1:
        return {"", "PATCH", {"subCategories", id}, {}, "{" + members + R"(,"decimals":null})"};
    case 2:
        return {"", "PATCH", {"subCategories", id}, {}, R"({"kind":"inclinometer"})"};
    default:
        return {"",
                "POST",
                {"projects", m_seen.anyId("projects"), "subCategories"},
                {},
                R"({"category":")" + anyCategory() + "\"," + members + "}"};
    }
}

Question RandomRequests::writeCategory()
{
    // Nothing is ever of the spare one, so that it can be removed.
    static const std::vector<std::string> known{"Spare",         "Spare", "Settlement", "Inclinometer",
                                                "Water / level", "Ä",     "none"};
    const std::string added = m_chance.once(2) ? "Spare" : anyCategory();
    switch (m_chance.below(3)) {
    case 0:
        return {"", "DELETE", {"categories", m_chance.of(known)}};
    case 1:
        return {"", "PATCH", {"categories", m_chance.of(known)}, {}, R"({"name":")" + anyCategory() + "\"}"};
    default:
        return {"", "POST", {"categories"}, {}, R"({"name":")" + added + "\"}"};
    }
}

Question RandomRequests::writeProject()
{
    static const std::vector<std::string> zones{"Europe/Vienna", "America/St_Johns", "UTC", "Pacific/Apia",
                                                "Nowhere"};
    const std::string id = m_seen.anyId("projects");
    switch (m_chance.below(4)) {
    case 0:
    case 1:
        return {"", "DELETE", {"projects", m_seen.latestId("projects")}};
    case 2:
        return {"", "PATCH", {"projects", id}, {}, R"({"name":")" + anyName() + "\"}"};
    default:
        return {"",
                "POST",
                {"projects"},
                {},
                R"({"name":")" + anyName() + R"(","timeZone":")" + m_chance.of(zones) + "\"}"};
    }
}

Question RandomRequests::read()
{
    switch (m_chance.below(10)) {
    case 0:
        return readOne();
    case 1:
    case 2:
        return readStatistics();
    case 3:
    case 4:
    case 5:
        return readPoints();
    default:
        return readList();
    }
}

Question RandomRequests::readOne()
{
    static const std::vector<std::string> kinds{"cells", "groupSettings", "pointLocations", "subCategories",
                                                "projects"};
    static const std::vector<std::string> keys{"create", "edit", "delete", "read"};
    switch (m_chance.below(8)) {
    case 0:
        return {"", "GET", {"about"}};
    case 1:
        return {"", "GET", {"categories"}};
    case 2:
        return {"",
                "GET",
                {"projects", m_seen.anyId("projects"), "auth"},
                {{"category", m_chance.of(categories)}, {"key", m_chance.of(keys)}}};
    default: {
        const std::string& kind = m_chance.of(kinds);
        return {"", "GET", {kind, m_seen.anyId(kind)}};
    }
    }
}

Question RandomRequests::readList()
{
    if (m_chance.once(3)) {
        const auto& [parent, kind] = m_chance.of(listsBelow);
        return {
            "", "GET", {parent, m_seen.anyId(parent), kind}, listParameters(kind, m_conditions.any(kind))};
    }
    if (m_chance.once(12)) {
        const std::string kind = m_chance.once(2) ? "changes" : "projects";
        return {"", "GET", {kind}, listParameters(kind, m_conditions.any(kind))};
    }
    const std::string& kind = m_chance.of(listsOfProjects);
    Question question{"",
                      "GET",
                      {"projects", m_seen.anyId("projects"), kind},
                      listParameters(kind, m_conditions.any(kind))};
    if (kind == "alarmManages" && m_chance.once(3)) {
        question.parameters.emplace_back("open", "true");
    }
    return question;
}

Question RandomRequests::readPoints()
{
    static const std::vector<std::string> samples{"none", "none", "latest", "latest", "all", "some"};
    const std::string kind = "pointLocations";
    Question question{"",
                      "GET",
                      {"projects", m_seen.anyId("projects"), kind},
                      listParameters(kind, m_conditions.anyOfSamples())};
    if (m_chance.once(2)) {
        question.parameters.emplace_back("samples", m_chance.of(samples));
        if (m_chance.once(2)) {
            question.parameters.emplace_back("rollup", "true");
        }
    }
    return question;
}

Question RandomRequests::readStatistics()
{
    const bool isOfDepths = m_chance.once(2);
    Question question{
        "",
        "GET",
        {"projects", m_seen.anyId("projects"), isOfDepths ? "depth_statistics" : "normal_statistics"}};
    if (!m_chance.once(5)) {
        question.parameters.emplace_back("where", m_chance.once(4) ? m_conditions.any("pointLocations")
                                                                   : m_conditions.anyOfSamples());
    }
    if (isOfDepths && m_chance.once(2)) {
        question.parameters.emplace_back("type", m_chance.once(10) ? "other" : "depth");
    }
    return question;
}

RandomRequests::Parameters RandomRequests::listParameters(const std::string& kind, std::string where)
{
    Parameters parameters;
    if (!m_chance.once(4)) {
        parameters.emplace_back("where", std::move(where));
    }
    if (m_chance.once(2)) {
        parameters.emplace_back("order", m_conditions.anyOrder(kind));
    }
    if (m_chance.once(4)) {
        parameters.emplace_back("skip", m_chance.of(skips));
    }
    if (m_chance.once(3)) {
        parameters.emplace_back("limit", m_chance.of(limits));
    }
    if (m_chance.once(6)) {
        parameters.emplace_back("only_count", "true");
    }
    if (m_chance.once(5)) {
        parameters.emplace_back("expand", m_chance.once(9) ? "yes" : "true");
    }
    return parameters;
}

// One of the two that are always there, mostly.
std::string RandomRequests::anyCategory()
{
    return m_chance.once(5) ? m_chance.of(categories) : categories[m_chance.below(2)];
}

std::string RandomRequests::anyName()
{
    return m_chance.of(names);
}

std::string RandomRequests::anyToken()
{
    static const std::vector<std::string> others{"reader", "reader", "creator", "nobody", "unknown", ""};
    return m_chance.once(8) ? m_chance.of(others) : "editor";
}

} // namespace monitorservice::test
