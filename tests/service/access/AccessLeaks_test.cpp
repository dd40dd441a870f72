#include "AccessRules.h"

#include <chrono>
#include <iostream>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const Role ownOnly{"", "rced", "", ""};

// A text on which a pattern such as (a+)+$ takes more steps than a request may take.
const std::string endless = std::string(40, 'a') + "!";

void execute(const std::filesystem::path& file, const std::vector<std::string>& statements)
{
    SQLite::Database database(file.string(), SQLite::OPEN_READWRITE);
    for (const std::string& statement : statements) {
        database.exec(statement);
    }
}

// Two services: what the first keeps for others the second has never had.
class AccessLeaks : public ::testing::Test
{
protected:
    AccessLeaks()
    {
        {
            SqliteStore store(world.file());
            addToken(store, ownOnly);
        }
        execute(world.file(),
                {"UPDATE samples SET time_flag = '" + endless + "' WHERE time_flag <> 'AmberFlag'",
                 "UPDATE cells SET document = json_set(document, '$.name', '" + endless +
                     "', '$.createdBy', '" + endless + "') WHERE document NOT LIKE '%Amber%'",
                 "UPDATE groups SET document = json_set(document, '$.groupName', '" + endless +
                     "') WHERE document NOT LIKE '%Amber%'",
                 "UPDATE point_locations SET document = json_set(document, '$.alias', '" + endless +
                     "') WHERE document NOT LIKE '%Amber%'",
                 "UPDATE sub_categories SET document = json_set(document, '$.name', '" + endless +
                     "') WHERE document NOT LIKE '%Amber%'",
                 "UPDATE data_manages SET document = json_set(document, '$.fileId', '" + endless +
                     "') WHERE document NOT LIKE '%Amber%'"});
        full = std::make_unique<ServedWorld>(world, "full.db");
        const std::filesystem::path lonely = world.file("lonely.db");
        bare = std::make_unique<ServedWorld>(world, "lonely.db");
        execute(lonely,
                {"DELETE FROM cells WHERE category <> 'Settlement' OR project <> 'project-own'",
                 "DELETE FROM sub_categories WHERE category <> 'Settlement' OR project <> 'project-own'",
                 "DELETE FROM groups WHERE cell NOT IN (SELECT id FROM cells)",
                 "DELETE FROM point_locations WHERE cell NOT IN (SELECT id FROM cells)",
                 "DELETE FROM samples WHERE point NOT IN (SELECT point FROM point_locations)",
                 "DELETE FROM day_rollup WHERE point NOT IN (SELECT point FROM point_locations)",
                 "DELETE FROM data_manages WHERE cell NOT IN (SELECT id FROM cells)",
                 "DELETE FROM histories WHERE data_manage NOT IN (SELECT id FROM data_manages)",
                 "DELETE FROM alarms WHERE cell NOT IN (SELECT id FROM cells)",
                 "DELETE FROM alarm_details WHERE alarm NOT IN (SELECT id FROM alarms)",
                 "DELETE FROM alarm_depths WHERE detail NOT IN (SELECT id FROM alarm_details)",
                 "DELETE FROM grants WHERE project = 'project-far'",
                 "DELETE FROM projects WHERE id = 'project-far'"});
    }

    // The one answer of both.
    RawAnswer askBoth(const std::string& method, const std::string& target, const std::string& body = {})
    {
        SCOPED_TRACE(method + ' ' + target + ' ' + body);
        const std::string token = "rkm_" + ownOnly.name();
        RawAnswer one = full->askDirectly(token, method, target, body);
        const RawAnswer other = bare->askDirectly(token, method, target, body);
        EXPECT_EQ(one.status, other.status);
        EXPECT_EQ(one.body, other.body);
        ++asked;
        return one;
    }

    std::string idOf(const Place& place, const std::string& kind) const
    {
        return world.in(place).at(kind).front();
    }

    AccessWorld world;
    std::unique_ptr<ServedWorld> full;
    std::unique_ptr<ServedWorld> bare;
    std::size_t asked = 0;
};

std::vector<std::string> conditions(const AccessWorld& world)
{
    std::vector<std::string> texts{
        R"({})",
        R"({"category":"Inclinometer"})",
        R"({"category":{"$ne":"Settlement"}})",
        R"({"category":{"$regex":"."}})",
        R"({"projectId":"project-far"})",
        R"({"projectId":{"$exists":true}})",
        R"({"subCategory":"Birch ground"})",
        R"({"subCategory":{"$regex":"^(a+)+$"}})",
        R"({"uuid":"BirchModel"})",
        R"({"uuid":{"$nin":["AmberModel"]}})",
        R"({"entity.rId":{"$regex":"."}})",
        R"({"data.value":{"$gt":7200}})",
        R"({"data.timeFlag":{"$ne":"AmberFlag"}})",
        R"({"time":{"$gte":"2015-12-21T00:00:00Z","$lt":"2015-12-22T00:00:00Z"}})",
        R"({"time":{"$regex":"(0+)+$"}})",
    };
    for (const char* const path : {"name", "createdBy", "groupName", "alias", "fileId", "data.timeFlag",
                                   "cellName", "pointName", "links.rId", "subCategory", "_id"}) {
        texts.push_back(R"({")" + std::string(path) + R"(":{"$regex":"^(a+)+$"}})");
        texts.push_back(R"({")" + std::string(path) + R"(":{"$regex":"(a|aa|.a)+b","$options":"i"}})");
        texts.push_back(R"({"category":"Settlement",")" + std::string(path) + R"(":{"$regex":"^(a+)+$"}})");
        texts.push_back(R"({"projectId":"project-own","category":{"$in":["Settlement"]},"time":{"$ne":1},")" +
                        std::string(path) + R"(":{"$regex":"^(a+)+$"}})");
        texts.push_back(R"({"time":{"$gte":"2000-01-01T00:00:00Z"},")" + std::string(path) +
                        R"(":{"$regex":"^(a+)+$"}})");
    }
    for (const Place* const place : {&beside, &far}) {
        for (const auto& [kind, ids] : world.in(*place)) {
            texts.push_back(R"({"_id":")" + ids.front() + R"("})");
            texts.push_back(R"({"_id":")" + ids.front() + R"(","alias":{"$regex":"^(a+)+$"}})");
            texts.push_back(R"({"cellId":")" + ids.front() + R"(","data.timeFlag":{"$regex":"^(a+)+$"}})");
            texts.push_back(R"({"cellId":{"$in":[")" + ids.front() + R"("]}})");
            texts.push_back(R"({"subCategoryId":{"$gte":")" + ids.front() + R"("}})");
        }
    }
    return texts;
}

TEST_F(AccessLeaks, ListsCountsAndStatisticsAreTheSameWithoutForeignData)
{
    std::size_t found = 0;
    for (const std::string& project : {own.project, far.project}) {
        for (const char* const list :
             {"cells", "subCategories", "pointLocations", "groupSettings", "dataManages", "alarmManages",
              "normal_statistics", "depth_statistics"}) {
            const std::string path = "projects/" + project + '/' + list + "?where=";
            for (const std::string& condition : conditions(world)) {
                const std::string target = path + percentEncoded(condition);
                const RawAnswer answer = askBoth("GET", target);
                found += answer.status == 200 && answer.body != "[]" ? 1 : 0;
                EXPECT_NE(answer.status, 422U) << target;
                askBoth("GET", target + "&only_count=true");
                askBoth("GET", target + "&skip=1&limit=1&order=-_id&expand=true");
                askBoth("GET", target + "&order=-data.time,name");
            }
        }
    }
    EXPECT_GT(found, 100U);
    std::cout << "access: " << asked << " requests, each answered as if there were no foreign data; " << found
              << " found something" << std::endl;
}

TEST_F(AccessLeaks, RefusalsAreTheSameWithoutForeignData)
{
    const std::vector<std::string> before = full->rows();
    const int version = full->dataVersion();
    for (const Place* const place : {&beside, &far}) {
        for (const Resource& resource : resources()) {
            const std::string path = filledIn(resource.path, world, *place);
            const std::string body = filledIn(resource.body, world, *place);
            for (const char* const method : {"GET", "PUT", "DELETE", "POST"}) {
                // What is asked of a category is asked of something that everybody may know.
                if (resource.ruleOf(method) != Rule::Make) {
                    askBoth(method, path, body);
                }
            }
        }
    }
    // What may be worked on is never joined to what may not.
    const std::string cell = idOf(own, "cells");
    const std::string group = idOf(own, "groupSettings");
    struct Attempt
    {
        const char* method;
        std::string target;
        std::string body;
        unsigned status;
    };
    for (const Place* const place : {&beside, &far}) {
        const std::string otherCell = idOf(*place, "cells");
        const std::string otherSub = idOf(*place, "subCategories");
        const auto delivered = [](const std::string& toCell, const std::string& sub) {
            return R"({"cellId":")" + toCell + R"(","subCategoryId":")" + sub +
                   R"(","name":"X","data":[{"count":1,"time":"2016-01-01T00:00:00Z","value":1}]})";
        };
        const std::string good = delivered(cell, idOf(own, "subCategories"));
        const auto newGroup = [&](const std::string& project, const std::string& ofCell,
                                  const std::string& sub) {
            return R"({"projectId":")" + project + R"(","cellId":")" + ofCell + R"(","subCategoryId":")" +
                   sub + R"(","groupName":"G"})";
        };
        for (const Attempt& attempt : std::vector<Attempt>{
                 {"PUT", "groupSettings/" + group, R"({"cellId":")" + otherCell + "\"}", 400},
                 {"PUT", "groupSettings/" + group, R"({"subCategoryId":")" + otherSub + "\"}", 400},
                 {"PUT", "groupSettings/" + group,
                  R"({"cellId":")" + otherCell + R"(","subCategoryId":")" + otherSub + "\"}", 400},
                 {"PUT", "groupSettings/" + group, R"({"projectId":"project-far"})", 400},
                 {"PUT", "cells/" + cell, R"({"category":"Inclinometer"})", 403},
                 {"PUT", "cells/" + cell, R"({"projectId":"project-far"})", 400},
                 {"PUT", "cells/" + cell, R"({"_id":")" + otherCell + "\"}", 400},
                 {"POST", "groupSettings", newGroup(own.project, otherCell, otherSub), 400},
                 {"POST", "groupSettings", newGroup(own.project, cell, otherSub), 400},
                 {"POST", "groupSettings", newGroup(place->project, otherCell, otherSub), 400},
                 {"POST", "groupSettings", newGroup(far.project, cell, idOf(own, "subCategories")), 400},
                 {"POST", "pointLocations", "[" + delivered(cell, otherSub) + "]", 400},
                 {"POST", "pointLocations", "[" + delivered(otherCell, otherSub) + "]", 400},
                 {"POST", "pointLocations", "[" + good + "," + delivered(otherCell, otherSub) + "]", 400},
                 {"POST", "pointLocations", "[[" + good + "],[" + delivered(cell, otherSub) + "]]", 500},
                 {"PUT", "pointLocations?where=" + percentEncoded(R"({"cellId":")" + otherCell + "\"}"),
                  R"({"links":[]})", 200},
                 {"PUT",
                  "pointLocations?where=" + percentEncoded(R"({"data.timeFlag":{"$regex":"^(a+)+$"}})"),
                  R"({"links":[]})", 200},
             }) {
            const RawAnswer answer = askBoth(attempt.method, attempt.target, attempt.body);
            EXPECT_EQ(answer.status, attempt.status)
                << attempt.method << ' ' << attempt.target << ' ' << attempt.body << answer.body;
            if (attempt.body.find("Inclinometer") == std::string::npos) {
                EXPECT_THAT(answer.body, Not(HasSubstr("Inclinometer"))) << attempt.body;
            }
        }
    }
    EXPECT_EQ(full->rows(), before);
    EXPECT_EQ(full->dataVersion(), version);
    std::cout << "access: " << asked << " refused attempts, nothing changed" << std::endl;
}

TEST_F(AccessLeaks, WhatIsForeignTakesAsLongAsWhatIsNotThere)
{
    // As large as a monitoring may be.
    execute(world.file("full.db"),
            {"UPDATE cells SET document = json_set(document, '$.alarmTo', json_array('" +
             std::string(1000000, 'x') + "')) WHERE id = '" + idOf(far, "cells") + "'"});
    const int rounds = isLongRun() ? 20000 : 1500;
    using Clock = std::chrono::steady_clock;
    for (const auto& [kind, prefix] :
         std::vector<std::pair<std::string, std::string>>{{"cells", "cells/"},
                                                          {"pointLocations", "pointLocations/"},
                                                          {"groupSettings", "groupSettings/"}}) {
        std::vector<std::vector<double>> taken(3);
        for (int round = 0; round < rounds; ++round) {
            const Place* const targets[] = {&nowhere, &beside, &far};
            for (std::size_t i = 0; i < 3; ++i) {
                const auto begin = Clock::now();
                const RawAnswer answer =
                    full->askDirectly("rkm_" + ownOnly.name(), "GET", prefix + idOf(*targets[i], kind));
                taken[i].push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
                ASSERT_EQ(answer.status, 404U);
            }
        }
        std::cout << "access: 404 of " << kind << ", median";
        const char* const names[] = {"not there", "other category", "other project, largest"};
        for (std::size_t i = 0; i < 3; ++i) {
            std::nth_element(taken[i].begin(), taken[i].begin() + rounds / 2, taken[i].end());
            std::cout << (i > 0 ? ", " : ": ") << names[i] << ' '
                      << taken[i][static_cast<std::size_t>(rounds) / 2] << " us";
        }
        std::cout << std::endl;
    }
}

} // namespace
} // namespace monitorservice::test
