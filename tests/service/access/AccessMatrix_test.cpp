#include "AccessRules.h"

#include <iostream>
#include <random>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::vector<std::string> sorted(std::vector<std::string> texts)
{
    std::sort(texts.begin(), texts.end());
    return texts;
}

// Roles whose rights are project-wide, in one category, mixed, and drawn by lot.
std::vector<Role> rolesToTry()
{
    std::vector<Role> roles;
    const std::vector<std::string> sets = allLetterSets();
    for (const std::string& set : sets) {
        roles.push_back({set, "", "", ""});
        roles.push_back({"", set, "", ""});
        roles.push_back({"", "r", set, ""});
        roles.push_back({"r", set, "", ""});
        roles.push_back({"", "", "", set});
    }
    std::mt19937 random(20151221);
    for (int i = 0; i < (isLongRun() ? 2000 : 16); ++i) {
        const auto drawn = [&] {
            return sets[random() % sets.size()];
        };
        roles.push_back({random() % 3 == 0 ? drawn() : "", drawn(), drawn(), drawn()});
    }
    roles.push_back({"", "", "", "", true});
    roles.push_back({"", "r", "", "", true});
    roles.push_back({"", "ced", "", "r", true});
    roles.push_back({"rced", "", "", "", true});
    std::sort(roles.begin(), roles.end(), [](const Role& a, const Role& b) { return a.name() < b.name(); });
    const auto same = [](const Role& a, const Role& b) {
        return a.name() == b.name();
    };
    roles.erase(std::unique(roles.begin(), roles.end(), same), roles.end());
    return roles;
}

struct Tally
{
    std::size_t requests = 0;
    std::size_t refused = 0;
    std::size_t writes = 0;
};

enum class Way
{
    Direct, // without a connection: every role, and no HEAD, as that reaches the resources as GET
    Socket
};

// Asks everything as one role after the other, and compares with the rules.
class Asker
{
public:
    Asker(const std::vector<Role>& roles, Way way) : m_way(way)
    {
        {
            const std::unique_ptr<Store> store = openStore(m_world.data().location());
            for (const Role& role : roles) {
                addToken(*store, role);
            }
        }
        m_served = std::make_unique<ServedWorld>(m_world);
        m_rows = m_served->rows();
    }

    bool isInDatabase() const { return m_world.data().isInDatabase(); }

    void askAllAs(const Role& role)
    {
        for (const Resource& resource : m_resources) {
            for (const Place* const place : {&own, &beside, &far, &nowhere}) {
                for (const char* const method :
                     {"GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS", "PATCH"}) {
                    const bool isGetAgain = m_way == Way::Direct && method == std::string_view("HEAD");
                    if (!isGetAgain && !isOfAnother(resource, method)) {
                        ask(role, resource, *place, method);
                    }
                }
            }
        }
    }

    const Tally& tally() const { return m_tally; }

private:
    // The same path may stand several times in the table, with other parameters or bodies for other methods.
    bool isOfAnother(const Resource& resource, const std::string& method) const
    {
        const auto pathOf = [](const Resource& one) {
            return one.path.substr(0, one.path.find('?'));
        };
        return resource.ruleOf(method) == Rule::Unknown &&
               std::any_of(m_resources.begin(), m_resources.end(), [&](const Resource& other) {
                   return pathOf(other) == pathOf(resource) && other.ruleOf(method) != Rule::Unknown;
               });
    }

    void ask(const Role& role, const Resource& resource, const Place& place, const std::string& method)
    {
        const Rule rule = resource.ruleOf(method);
        const std::string path = filledIn(resource.path, m_world, place);
        std::vector<std::string> targets{path};
        if (isList(rule) && method == "GET") {
            targets.push_back(path + "?only_count=true");
            targets.push_back(path + "?expand=true&order=-_id&where=" +
                              percentEncoded(R"({"_id":{"$regex":"."},"absent":null})"));
            if (resource.kind == "pointLocations") {
                targets.push_back(path + "?samples=latest&rollup=true");
            }
        }
        const bool hasBody = method == "POST" || method == "PUT" || method == "PATCH";
        const std::string body = hasBody ? filledIn(resource.body, m_world, place) : "";
        for (const std::string& target : targets) {
            SCOPED_TRACE(role.name() + ": " + method + ' ' + target + ' ' + body);
            const int commits = m_served->store.commits();
            const std::string token = "rkm_" + role.name();
            const RawAnswer answer = m_way == Way::Direct ? m_served->askDirectly(token, method, target, body)
                                                          : m_served->ask(token, method, target, body);
            ++m_tally.requests;
            m_tally.refused += answer.status >= 400 ? 1 : 0;
            const bool isNested = body.rfind("[[", 0) == 0;
            ASSERT_EQ(answer.status, statusFor(resource, rule, role, place, isNested)) << answer.body;
            checkText(role, resource, place, method, target, answer);
            checkNothingForeignIsTold(role, rule, method, target + body, answer);
            checkStore(resource, place, method, answer, commits);
        }
    }

    void checkText(const Role& role, const Resource& resource, const Place& place, const std::string& method,
                   const std::string& target, const RawAnswer& answer) const
    {
        if (method == "HEAD") {
            EXPECT_EQ(answer.body, "");
            return;
        }
        if (answer.status >= 400) {
            EXPECT_EQ(member(answer.body, "status"), std::to_string(answer.status));
            return;
        }
        switch (resource.ruleOf(method)) {
        case Rule::Question:
            EXPECT_EQ(member(answer.body, "value"),
                      role.may(resource.kind.front(), place) ? "true" : "false");
            break;
        case Rule::Projects:
        case Rule::Described:
        case Rule::Trail:
        case Rule::List: {
            const std::vector<std::string> expected =
                listedFor(role, resource.ruleOf(method), resource.kind, place);
            if (target.find("only_count") != std::string::npos) {
                EXPECT_EQ(answer.body, R"({"count":)" + std::to_string(expected.size()) + "}");
            } else {
                EXPECT_EQ(sorted(membersOf(answer.body, "_id")), expected);
            }
            break;
        }
        case Rule::Under:
            EXPECT_EQ(sorted(membersOf(answer.body, "_id")), sorted(m_world.in(place).at(resource.kind)));
            break;
        case Rule::Days: {
            const std::size_t perPlace = resource.kind == "depths" ? 2 : 3;
            const std::size_t points = readableOf(role, "groupSettings", place).size() * perPlace;
            EXPECT_EQ(occurrences(answer.body, R"("_id")"), 2 * points) << answer.body;
            break;
        }
        case Rule::Relate:
            EXPECT_EQ(answer.body,
                      role.may('r', place) && role.may('e', place) ? R"({"count":3})" : R"({"count":0})");
            break;
        default:
            break;
        }
    }

    static bool isList(Rule rule)
    {
        return rule == Rule::List || rule == Rule::Projects || rule == Rule::Described || rule == Rule::Trail;
    }

    std::vector<std::string> listedFor(const Role& role, Rule rule, const std::string& kind,
                                       const Place& place) const
    {
        if (rule == Rule::Projects) {
            return projectsOf(role);
        }
        const bool isOfAll = role.administers && (rule == Rule::Described || rule == Rule::Trail);
        if (!isOfAll) {
            return readableOf(role, kind, place);
        }
        std::vector<std::string> ids;
        for (const Place* const one : places) {
            if (rule == Rule::Trail || one->project == place.project) {
                const std::vector<std::string>& some = m_world.in(*one).at(kind);
                ids.insert(ids.end(), some.begin(), some.end());
            }
        }
        return sorted(ids);
    }

    static std::vector<std::string> projectsOf(const Role& role)
    {
        std::vector<std::string> ids;
        for (const std::string& project : {far.project, own.project}) {
            if (role.administers || role.isKnownIn(project)) {
                ids.push_back(project);
            }
        }
        return ids;
    }

    std::vector<std::string> readableOf(const Role& role, const std::string& kind, const Place& asked) const
    {
        std::vector<std::string> ids;
        for (const Place* const place : places) {
            if (place->project == asked.project && role.may('r', *place)) {
                const std::vector<std::string>& some = m_world.in(*place).at(kind);
                ids.insert(ids.end(), some.begin(), some.end());
            }
        }
        return sorted(ids);
    }

    static std::size_t occurrences(const std::string& text, const std::string& what)
    {
        std::size_t number = 0;
        for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += what.size()) {
            ++number;
        }
        return number;
    }

    // Who delivers is told of the points that were delivered, though reading is another right. Administrators
    // are told what sub-categories there are, and all that the trail tells.
    void checkNothingForeignIsTold(const Role& role, Rule rule, const std::string& method,
                                   const std::string& request, const RawAnswer& answer) const
    {
        if (role.administers && rule == Rule::Trail) {
            return;
        }
        const bool seesSubCategories =
            role.administers && (rule == Rule::Described || rule == Rule::Definition ||
                                 rule == Rule::Administer || rule == Rule::Used);
        for (const Place* const place : places) {
            if (role.may('r', *place) || (method == "POST" && role.may('c', *place))) {
                continue;
            }
            std::vector<std::string> secrets{place->valueText()};
            if (!seesSubCategories) {
                secrets.push_back(place->word);
            }
            for (const auto& [kind, ids] : m_world.in(*place)) {
                if (!seesSubCategories || kind != "subCategories") {
                    secrets.insert(secrets.end(), ids.begin(), ids.end());
                }
            }
            for (const std::string& secret : secrets) {
                if (request.find(secret) == std::string::npos) {
                    EXPECT_THAT(answer.body, Not(HasSubstr(secret)));
                }
            }
        }
    }

    void checkStore(const Resource& resource, const Place& place, const std::string& method,
                    const RawAnswer& answer, int commits)
    {
        const bool changes =
            answer.status < 300 && method != "GET" && method != "HEAD" && answer.body != R"({"count":0})";
        if (!changes) {
            EXPECT_TRUE(m_served->isUnchanged(commits, m_rows));
            return;
        }
        ++m_tally.writes;
        EXPECT_GT(m_served->store.commits(), commits) << resource.path;
        const std::vector<std::string> left = m_served->rows();
        EXPECT_NE(left, m_rows);
        for (const std::string& row : m_rows) {
            const bool isOfOther = std::any_of(places.begin(), places.end(), [&](const Place* other) {
                return other->word != place.word && (row.find(other->word) != std::string::npos ||
                                                     row.find(" " + other->valueText()) != std::string::npos);
            });
            if (isOfOther) {
                EXPECT_NE(std::find(left.begin(), left.end(), row), left.end()) << row;
            }
        }
        m_served.reset();
        m_served = std::make_unique<ServedWorld>(m_world);
        ASSERT_EQ(m_served->rows(), m_rows);
    }

    const std::vector<Resource> m_resources = resources();
    AccessWorld m_world;
    std::unique_ptr<ServedWorld> m_served;
    std::vector<std::string> m_rows;
    Tally m_tally;
    Way m_way;
};

void askAll(const std::vector<Role>& roles, Way way)
{
    Asker asker(roles, way);
    // A database takes a tenth of a second to come back after each write.
    const std::size_t step = asker.isInDatabase() && way == Way::Direct && !isLongRun() ? 4 : 1;
    std::size_t asked = 0;
    for (std::size_t i = 0; i < roles.size() && !::testing::Test::HasFatalFailure(); i += step) {
        asker.askAllAs(roles[i]);
        ++asked;
    }
    const Tally& tally = asker.tally();
    std::cout << "access: " << asked << " roles, " << tally.requests << " requests, " << tally.refused
              << " refused, " << tally.writes
              << " writes done, wrong answers: " << (::testing::Test::HasFailure() ? "some" : "0")
              << std::endl;
}

// A part of the roles, so that the parts run side by side.
class AccessMatrix : public ::testing::TestWithParam<std::size_t>
{
public:
    static constexpr std::size_t parts = 8;
};

TEST_P(AccessMatrix, AnswersWhatTheRulesSay)
{
    std::vector<Role> roles;
    const std::vector<Role> all = rolesToTry();
    for (std::size_t i = GetParam(); i < all.size(); i += parts) {
        roles.push_back(all[i]);
    }
    askAll(roles, Way::Direct);
}

INSTANTIATE_TEST_SUITE_P(Parts, AccessMatrix, ::testing::Range<std::size_t>(0, AccessMatrix::parts));

TEST(AccessOverSockets, AnswersWhatTheRulesSay)
{
    askAll({{"", "rced", "", ""}, {"", "r", "ced", "r"}, {"", "", "r", "", true}}, Way::Socket);
}

TEST(AccessRules, KnowEveryResourceThatIsDescribed)
{
    AccessWorld world;
    ServedWorld served(world);
    const RawAnswer answer = served.askRaw("GET /openapi.json HTTP/1.1\r\nHost: h\r\n\r\n");
    std::set<std::string> described;
    simdjson::dom::parser parser;
    const simdjson::dom::object paths = parser.parse(answer.body)["paths"];
    for (const auto path : paths) {
        const std::string pattern = std::string(path.key).substr(1);
        const simdjson::dom::object methods = path.value;
        for (const auto method : methods) {
            if (method.key != "parameters") {
                described.insert(std::string(method.key) + ' ' + pattern);
            }
        }
    }
    std::set<std::string> known;
    for (const Resource& resource : resources()) {
        std::string pattern = resource.path.substr(0, resource.path.find('?'));
        if (pattern == "categories/Spare") {
            known.insert({"patch categories/{name}", "delete categories/{name}"});
            continue;
        }
        const std::size_t begin = pattern.find('{');
        if (begin != std::string::npos && pattern.find("{project}") == std::string::npos) {
            pattern.replace(begin, pattern.find('}') - begin + 1, "{id}");
        }
        const std::pair<const char*, Rule> methods[] = {{"get", resource.get},
                                                        {"post", resource.post},
                                                        {"put", resource.put},
                                                        {"delete", resource.remove},
                                                        {"patch", resource.patch}};
        for (const auto& [method, rule] : methods) {
            if (rule != Rule::Unknown) {
                known.insert(std::string(method) + ' ' + pattern);
            }
        }
    }
    EXPECT_EQ(known, described);
}

} // namespace
} // namespace monitorservice::test
