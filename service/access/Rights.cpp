#include "access/Rights.h"

#include <algorithm>
#include <array>
#include <utility>

namespace monitorservice {

namespace {

constexpr std::array<std::pair<std::string_view, Right>, 5> namedRights{{
    {"read", Right::Read},
    {"create", Right::Create},
    {"edit", Right::Edit},
    {"delete", Right::Delete},
    {"administer", Right::Administer},
}};

} // namespace

std::optional<Rights> Rights::ofNames(std::string_view names)
{
    Rights rights;
    for (bool more = true; more;) {
        const std::size_t comma = names.find(',');
        const std::string_view name = names.substr(0, comma);
        const auto* const known = std::find_if(namedRights.begin(), namedRights.end(),
                                               [name](const auto& entry) { return entry.first == name; });
        if (known == namedRights.end()) {
            return std::nullopt;
        }
        rights = rights | known->second;
        more = comma != std::string_view::npos;
        names.remove_prefix(more ? comma + 1 : names.size());
    }
    return rights;
}

std::string Rights::names() const
{
    std::string names;
    for (const auto& [name, right] : namedRights) {
        if (has(right)) {
            names += names.empty() ? "" : ",";
            names += name;
        }
    }
    return names;
}

} // namespace monitorservice
