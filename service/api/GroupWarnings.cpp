#include "api/GroupWarnings.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace monitorservice {

namespace {

using Names = std::set<std::string>;

// Of names in a sentence, and of sentences about other groups.
constexpr std::size_t mostNamed = 10;

std::string quoted(const std::string& name)
{
    return "\"" + name + "\"";
}

// The names with commas between; of many the first ones and how many there are besides.
std::string listed(const Names& names)
{
    std::string text;
    std::size_t number = 0;
    for (const std::string& name : names) {
        if (number == mostNamed) {
            return text + " and " + std::to_string(names.size() - number) + " more";
        }
        text += (number == 0 ? "" : ", ") + quoted(name);
        ++number;
    }
    return text;
}

Names namedTwice(const Group& group)
{
    Names once;
    Names twice;
    for (const std::string& name : group.points) {
        if (!once.insert(name).second) {
            twice.insert(name);
        }
    }
    return twice;
}

Names withoutPoint(const Session& session, const Group& group, const Names& names)
{
    Names missing;
    for (const std::string& name : names) {
        bool exists = false;
        session.measurements().visitPoints(group.cell, group.subCategory, name,
                                           [&exists](const StoredPoint& /*point*/) { exists = true; });
        if (!exists) {
            missing.insert(name);
        }
    }
    return missing;
}

void warnOfOtherGroups(const Session& session, const Group& group, const Names& names,
                       std::vector<std::string>& warnings)
{
    const Where where = Where::equals("subCategoryId", group.subCategory);
    DocumentQuery query;
    query.project = group.project;
    query.parent = group.cell;
    query.where = &where;
    std::size_t number = 0;
    session.documents(DocumentKind::Group).visit(query, [&](std::string_view document) {
        const auto other = fromDocument<Group>(document);
        const Names others(other.points.begin(), other.points.end());
        Names common;
        std::set_intersection(names.begin(), names.end(), others.begin(), others.end(),
                              std::inserter(common, common.end()));
        if (other.id == group.id || common.empty()) {
            return;
        }
        ++number;
        if (number <= mostNamed) {
            warnings.push_back("group " + quoted(other.name) + " (" + other.id + ") lists " + listed(common) +
                               ", too");
        }
    });
    if (number > mostNamed) {
        warnings.push_back(std::to_string(number - mostNamed) + " more groups list points of this one, too");
    }
}

} // namespace

std::vector<std::string> warningsOf(const Session& session, const Group& group, bool mayReadCategory)
{
    std::vector<std::string> warnings;
    if (group.dayVariation == 0 && group.totalVariation == 0) {
        warnings.emplace_back("the group has no limit: \"dayVarValue\" and \"totalVar\" are 0");
    }
    if (const Names twice = namedTwice(group); !twice.empty()) {
        warnings.push_back("\"groupPoint\" lists more than once: " + listed(twice));
    }
    if (!mayReadCategory) {
        return warnings;
    }
    const Names names(group.points.begin(), group.points.end());
    if (const Names missing = withoutPoint(session, group, names); !missing.empty()) {
        warnings.push_back("the monitoring has no point of this sub-category named " + listed(missing));
    }
    warnOfOtherGroups(session, group, names, warnings);
    return warnings;
}

} // namespace monitorservice
