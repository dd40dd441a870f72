#pragma once

#include "api/Links.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// A monitoring as it is stored.
struct Cell
{
    std::string id;
    std::string project;
    std::string name;
    std::string category;
    std::vector<std::string> alarmTo; ///< who is told of its alarms
    std::vector<Link> links;
    std::string createdAt; ///< times as isoText() writes them
    std::string createdBy;
    std::string updatedAt;
    std::string updatedBy;
};

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

/// The document under which it is stored and answered.
std::string toDocument(const Cell& cell);

/// The reverse of toDocument(). Throws StoreError when the text is no such document.
Cell cellOf(const std::string& document);

} // namespace monitorservice
