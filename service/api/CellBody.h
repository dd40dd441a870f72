#pragma once

#include "api/SentLinks.h"
#include "domain/Cell.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What a client sends of a monitoring; a member that it did not send is absent.
struct CellBody
{
    std::optional<std::string> project;
    std::optional<std::string> name;
    std::optional<std::string> category;
    std::optional<std::vector<std::string>> alarmTo;
    std::optional<SentLinks> links;
};

/// Reads the body of a POST or PUT. Throws ApiError 400 that names the member.
CellBody parseCellBody(std::string_view json);

/// Takes over the members that were sent. Links of the types that were sent replace those of the same types;
/// links of other types stay, so that who knows one relation only does not lose the others. An empty list of
/// links removes all. Gives whether anything changed.
bool applyTo(Cell& cell, const CellBody& body);

} // namespace monitorservice
