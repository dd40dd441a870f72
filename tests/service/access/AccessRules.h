#pragma once

#include "AccessWorld.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

/// What a token may do where: letters of "rced" for read, create, edit and delete.
struct Role
{
    std::string everywhere; ///< in every category of the own project
    std::string inOwn;
    std::string inBeside;
    std::string inFar;
    bool administers = false;

    std::string name() const
    {
        return everywhere + "-" + inOwn + "-" + inBeside + "-" + inFar + (administers ? "-a" : "");
    }

    bool may(char right, const Place& place) const
    {
        const auto holds = [right](const std::string& letters) {
            return letters.find(right) != std::string::npos;
        };
        if (place.project == own.project) {
            return holds(everywhere) || holds(place.category == own.category ? inOwn : inBeside);
        }
        return place.project == far.project && place.category == far.category && holds(inFar);
    }

    bool isKnownIn(const std::string& project) const
    {
        return project == own.project ? !(everywhere + inOwn + inBeside).empty()
                                      : project == far.project && !inFar.empty();
    }

    bool mayInProjectOf(char right, const Place& place) const
    {
        return std::any_of(places.begin(), places.end(), [&](const Place* other) {
            return other->project == place.project && may(right, *other);
        });
    }
};

/// The sixteen sets of rights.
inline std::vector<std::string> allLetterSets()
{
    std::vector<std::string> sets{""};
    for (const char letter : std::string_view("rced")) {
        const std::vector<std::string> shorter = sets;
        for (const std::string& set : shorter) {
            sets.push_back(set + letter);
        }
    }
    return sets;
}

inline Rights rightsOf(const std::string& letters)
{
    Rights rights;
    for (const char letter : letters) {
        rights = rights | (letter == 'r'   ? Right::Read
                           : letter == 'c' ? Right::Create
                           : letter == 'e' ? Right::Edit
                                           : Right::Delete);
    }
    return rights;
}

inline void addToken(Store& store, const Role& role)
{
    AccessWorld::addToken(store, role.name(),
                          {{own.project, std::nullopt, rightsOf(role.everywhere)},
                           {own.project, own.category, rightsOf(role.inOwn)},
                           {own.project, beside.category, rightsOf(role.inBeside)},
                           {far.project, far.category, rightsOf(role.inFar)},
                           {std::nullopt, std::nullopt, role.administers ? Right::Administer : Rights()}});
}

/// How a method of a resource answers.
enum class Rule
{
    Unknown,   ///< 405
    Open,      ///< 200 for every bearer
    Known,     ///< a project: 200 when any right is held in it, and for administrators, otherwise 404
    Projects,  ///< 200 with the projects that any right is held in; for administrators all of them
    Question,  ///< 200, the answer is in the text
    List,      ///< of a project: 200 with what may be read, 404 when nothing may
    Days,      ///< the same, with statistics
    Item,      ///< 200 when it may be read, otherwise 404
    Under,     ///< what hangs on an item: 200 with all of it when the item may be read, otherwise 404
    Change,    ///< 404 when it may not be read, 403 when it may not be edited, otherwise 200
    Remove,    ///< the same with delete
    Held,      ///< the same, but 409 as something hangs on it
    TakeBack,  ///< the same as Change with both edit and delete
    Make,      ///< 404 when the project is not known to the bearer, 403 without create, otherwise 201
    Attach,    ///< 400 when the monitoring is not known to the bearer, 403 without create, otherwise 201
    Deliver,   ///< the same with 200
    Relate,    ///< 403 when points may be read but not edited, otherwise 200 with the number that may be both
    Described, ///< of a project, as List; for administrators all of them, 404 without that project
    Definition, ///< the same as Item
    Administer, ///< 403 but for administrators, who are answered 200, and 404 when it is not there
    Found,      ///< the same with 201
    Used,       ///< the same with 409 as something uses it
    Trail,      ///< 403 but for administrators: 200 with what is told of all projects
};

/// One address. "{cells}" stands for the place's first identifier of that kind, "{cells.1}" for its second.
struct Resource
{
    std::string path;
    std::string kind; ///< of what a list has
    Rule get = Rule::Unknown;
    Rule post = Rule::Unknown;
    Rule put = Rule::Unknown;
    Rule remove = Rule::Unknown;
    std::string body = {};
    Rule patch = Rule::Unknown;

    Rule ruleOf(const std::string& method) const
    {
        return method == "GET" || method == "HEAD" ? get
               : method == "POST"                  ? post
               : method == "PUT"                   ? put
               : method == "DELETE"                ? remove
               : method == "PATCH"                 ? patch
                                                   : Rule::Unknown;
    }
};

inline std::vector<Resource> resources()
{
    constexpr Rule no = Rule::Unknown;
    const std::string sample =
        R"({"cellId":"{cells}","subCategoryId":"{subCategories}","name":"{word}P1",)"
        R"("data":[{"count":9,"time":"2016-01-01T00:00:00Z","value":1,"timeFlag":""}]})";
    return {
        {"about", "", Rule::Open},
        {"projects", "", Rule::Projects, Rule::Found, no, no, R"({"name":"New pit","timeZone":"UTC"})"},
        {"projects/{project}", "", Rule::Known, no, no, Rule::Used, R"({"name":"Renamed"})",
         Rule::Administer},
        {"categories", "", Rule::Open, Rule::Found, no, no, R"({"name":"Strain"})"},
        {"categories/Spare", "", no, no, no, Rule::Administer, R"({"name":"Stress"})", Rule::Administer},
        {"changes", "changes", Rule::Trail},
        {"projects/{project}/auth?category={category}&key=create", "c", Rule::Question},
        {"projects/{project}/auth?category={category}&key=edit", "e", Rule::Question},
        {"projects/{project}/auth?category={category}&key=delete", "d", Rule::Question},
        {"cells", "", no, Rule::Make, no, no,
         R"({"projectId":"{project}","name":"New","category":"{category}"})"},
        {"cells/{cells}", "", Rule::Item, no, Rule::Change, Rule::Held, R"({"name":"Renamed"})"},
        {"cells/{cells.1}", "", Rule::Item, no, Rule::Change, Rule::Remove, R"({"links":[]})"},
        {"cells/{cells}/groupSettings", "groupSettings", Rule::Under},
        {"projects/{project}/cells", "cells", Rule::List},
        {"projects/{project}/subCategories", "subCategories", Rule::Described, Rule::Found, no, no,
         R"({"name":"New","category":"{category}"})"},
        {"subCategories/{subCategories}", "", Rule::Definition, no, no, Rule::Used, R"({"unit":"kN"})",
         Rule::Administer},
        {"pointLocations", "", no, Rule::Deliver, no, no, "[" + sample + "]"},
        {"pointLocations", "", no, Rule::Deliver, no, no, "[[" + sample + "]]"},
        {"pointLocations?where=%7B%22cellId%22%3A%22{cells}%22%7D", "", no, no, Rule::Relate, no,
         R"({"links":[{"type":"model","rId":"new"}]})"},
        {"pointLocations/{pointLocations}", "", Rule::Item, no, no, Rule::Remove, R"({"alias":"Renamed"})",
         Rule::Change},
        {"pointLocations/{pointLocations}/samples?where=%7B%22count%22%3A1%7D", "", no, no, no, Rule::Remove},

        {"projects/{project}/pointLocations", "pointLocations", Rule::List},
        {"projects/{project}/normal_statistics", "pointLocations", Rule::Days},
        {"projects/{project}/depth_statistics?type=depth", "depths", Rule::Days},
        {"groupSettings", "", no, Rule::Attach, no, no,
         R"({"projectId":"{project}","cellId":"{cells}","subCategoryId":"{subCategories}","groupName":"New"})"},
        {"groupSettings/{groupSettings}", "", Rule::Item, no, Rule::Change, Rule::Remove,
         R"({"totalVar":3.5})"},
        {"projects/{project}/groupSettings", "groupSettings", Rule::List},
        {"projects/{project}/dataManages", "dataManages", Rule::List},
        {"dataManages/{dataManages}", "", no, no, no, Rule::Held},
        {"dataManages/{dataManages}?cascade=true", "", no, no, no, Rule::Remove},
        {"dataManages/{dataManages}/historyDatas", "historyDatas", Rule::Under},
        {"historyDatas/{historyDatas}", "", no, no, no, Rule::TakeBack},
        {"projects/{project}/alarmManages", "alarmManages", Rule::List},
        {"projects/{project}/changes", "changes", Rule::List},
        {"alarmManages/{alarmManages}/alarmDetails", "alarmDetails", Rule::Under},
        {"alarmDetails/{alarmDetails}/threeDetails", "threeDetails", Rule::Under},
    };
}

/// The text with what stands for the place's own.
inline std::string filledIn(std::string text, const AccessWorld& world, const Place& place)
{
    const auto replace = [&text](const std::string& what, const std::string& with) {
        for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
            text.replace(at, what.size(), with);
        }
    };
    replace("{project}", place.project);
    replace("{category}", place.category);
    replace("{word}", place.word);
    for (const auto& [kind, ids] : world.in(place)) {
        replace("{" + kind + "}", ids.front());
        if (ids.size() > 1) {
            replace("{" + kind + ".1}", ids.at(1));
        }
    }
    return text;
}

/// What the role must be answered.
inline unsigned statusFor(const Resource& resource, Rule rule, const Role& role, const Place& place,
                          bool isNested)
{
    const bool isThere = place.project != nowhere.project || resource.path.find('{') == std::string::npos;
    const auto administered = [&](unsigned done) {
        return !role.administers ? 403U : isThere ? done : 404U;
    };
    const bool reads = role.may('r', place);
    const auto changed = [&](char right, unsigned done) {
        return !reads ? 404U : role.may(right, place) ? done : 403U;
    };
    const auto added = [&](bool isKnown, unsigned unknown, unsigned done) {
        return role.may('c', place) ? done : isKnown ? 403U : unknown;
    };
    const bool isKnown = reads || role.may('c', place);
    switch (rule) {
    case Rule::Unknown:
        return 405;
    case Rule::Open:
    case Rule::Projects:
    case Rule::Question:
        return 200;
    case Rule::Known:
        return isThere && (role.administers || role.isKnownIn(place.project)) ? 200 : 404;
    case Rule::Described:
        return isThere && (role.administers || role.mayInProjectOf('r', place)) ? 200 : 404;
    case Rule::Definition:
        return isThere && (role.administers || reads) ? 200 : 404;
    case Rule::Administer:
    case Rule::Trail:
        return administered(200);
    case Rule::Found:
        return administered(201);
    case Rule::Used:
        return administered(409);
    case Rule::List:
    case Rule::Days:
        return role.mayInProjectOf('r', place) ? 200 : 404;
    case Rule::Item:
    case Rule::Under:
        return reads ? 200 : 404;
    case Rule::Change:
        return changed('e', 200);
    case Rule::Remove:
        return changed('d', 200);
    case Rule::Held:
        return changed('d', 409);
    case Rule::TakeBack:
        return changed(role.may('e', place) ? 'd' : 'e', 200);
    case Rule::Make:
        return added(role.mayInProjectOf('r', place) || role.mayInProjectOf('c', place), 404, 201);
    case Rule::Attach:
        return added(isKnown, 400, 201);
    case Rule::Deliver: {
        const unsigned status = added(isKnown, 400, 200);
        return isNested && status >= 400 ? 500 : status;
    }
    case Rule::Relate:
        return reads && !role.may('e', place) ? 403 : 200;
    }
    return 0;
}

} // namespace monitorservice::test
