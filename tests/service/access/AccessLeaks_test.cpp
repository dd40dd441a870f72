#include "AccessRules.h"
#include "time/LocalDays.h"
#include "trail/AuditTrail.h"

#include <chrono>
#include <iostream>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const Role ownOnly{"", "rced", "", ""};

// A text on which a pattern such as (a+)+$ takes more steps than a request may take.
const std::string endless = std::string(40, 'a') + "!";

// The document with another JSON value as a member that it has.
std::string withMember(const std::string& document, const char* name, const std::string& value)
{
    simdjson::dom::parser parser;
    const std::string begin = "\"" + std::string(name) + "\":";
    const std::string held = begin + simdjson::minify(parser.parse(document)[name].value());
    std::string changed = document;
    return changed.replace(changed.find(held), held.size(), begin + value);
}

bool isOwn(const std::string& document)
{
    return document.find(own.word) != std::string::npos;
}

struct Member
{
    DocumentKind kind;
    const char* name;
};

// Gives what is not of the own place a text that no pattern gets through.
void makeEndless(Session& session, const std::string& project)
{
    const std::string quotedEndless = '"' + endless + '"';
    for (const Member& member :
         {Member{DocumentKind::Cell, "name"}, Member{DocumentKind::Cell, "createdBy"},
          Member{DocumentKind::Group, "groupName"}, Member{DocumentKind::SubCategory, "name"},
          Member{DocumentKind::DataManage, "fileId"}, Member{DocumentKind::Change, "name"}}) {
        for (const std::string& document : documentsOf(session, project, member.kind)) {
            if (!isOwn(document)) {
                session.documents(member.kind)
                    .replace(project, test::member(document, "_id"),
                             withMember(document, member.name, quotedEndless));
            }
        }
    }
    LocalDays days(session.projects().find(project)->timeZone);
    for (const HeldPoint& point : pointsOf(session, project)) {
        if (!isOwn(point.document)) {
            session.measurements().replacePoint(point.key, withMember(point.document, "alias", quotedEndless),
                                                point.samples.back().time, std::nullopt);
        }
        for (Sample sample : point.samples) {
            if (sample.timeFlag != own.word + "Flag") {
                sample.timeFlag = endless;
                session.measurements().replaceSample(point.key, days.periodOf(sample.time), sample);
            }
        }
    }
}

// What is about the project as a whole is of no category that could be granted.
void recordOfProject(Session& session, const std::string& project)
{
    Change change;
    change.project = project;
    change.action = "project.changed";
    change.subject = project;
    record(session, change);
}

// Copies what is of the own place, as if there had never been anything else.
void copyOwn(const Session& from, Session& to)
{
    for (const std::string& category : from.categories().list()) {
        to.categories().add(category);
    }
    to.projects().insert(from.projects().find(own.project).value());
    const auto copy = [&](DocumentKind kind) {
        for (const std::string& document : documentsOf(from, own.project, kind)) {
            const std::string id = test::member(document, "_id");
            if (from.documents(kind).find(id).value().category == own.category) {
                to.documents(kind).insert(own.project, id, document);
            }
        }
    };
    for (const DocumentKind kind :
         {DocumentKind::Cell, DocumentKind::SubCategory, DocumentKind::Group, DocumentKind::DataManage,
          DocumentKind::History, DocumentKind::Alarm, DocumentKind::AlarmDetail, DocumentKind::AlarmDepth,
          DocumentKind::Change}) {
        copy(kind);
    }
    LocalDays days(to.projects().find(own.project)->timeZone);
    for (const HeldPoint& point : pointsOf(from, own.project)) {
        if (from.documents(DocumentKind::PointLocation).find(point.id).value().category != own.category) {
            continue;
        }
        const std::int64_t key = to.measurements().insertPoint(own.project, point.id, point.document, 0);
        for (const Sample& sample : point.samples) {
            to.measurements().insertSample(key, days.periodOf(sample.time), sample, 0);
        }
    }
}

// Two services: what the first keeps for others the second has never had.
class AccessLeaks : public ::testing::Test
{
protected:
    AccessLeaks()
    {
        {
            addToken(*openStore(world.data().location()), ownOnly);
        }
        AccessWorld::write(*openStore(world.data().location()), [](Session& session) {
            for (const Project& project : session.projects().list()) {
                recordOfProject(session, project.id);
                makeEndless(session, project.id);
            }
        });
        full = std::make_unique<ServedWorld>(world);
        StoreOptions options;
        options.createIfMissing = true;
        bare = std::make_unique<ServedWorld>(TestStore(), options);
        AccessWorld::write(bare->store, [this](Session& session) { copyOwn(*full->store.read(), session); });
        addToken(bare->store, ownOnly);
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
    for (const char* const path :
         {"name", "createdBy", "groupName", "alias", "fileId", "data.timeFlag", "cellName", "pointName",
          "links.rId", "subCategory", "before.groupName", "after.groupName", "_id"}) {
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
              "changes", "normal_statistics", "depth_statistics"}) {
            const std::string path = "projects/" + project + '/' + list + "?where=";
            for (const std::string& condition : conditions(world)) {
                const std::string target = path + percentEncoded(condition);
                const RawAnswer answer = askBoth("GET", target);
                found += answer.status == 200 && answer.body != "[]" ? 1 : 0;
                EXPECT_NE(answer.status, 422U) << target;
                askBoth("GET", target + "&only_count=true");
                askBoth("GET", target + "&skip=1&limit=1&order=-_id&expand=true");
                askBoth("GET", target + "&order=-data.time,name");
                askBoth("GET", target + "&samples=latest&rollup=true");
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
    for (const Place* const place : {&beside, &far}) {
        for (const Resource& resource : resources()) {
            const std::string path = filledIn(resource.path, world, *place);
            const std::string body = filledIn(resource.body, world, *place);
            for (const char* const method : {"GET", "PUT", "PATCH", "DELETE", "POST"}) {
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
    std::cout << "access: " << asked << " refused attempts, nothing changed" << std::endl;
}

TEST_F(AccessLeaks, WhatIsForeignTakesAsLongAsWhatIsNotThere)
{
    // As large as a monitoring may be.
    AccessWorld::write(full->store, [this](Session& session) {
        const std::string id = idOf(far, "cells");
        Documents& cells = session.documents(DocumentKind::Cell);
        cells.replace(
            far.project, id,
            withMember(cells.find(id).value().text, "alarmTo", "[\"" + std::string(1000000, 'x') + "\"]"));
    });
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
