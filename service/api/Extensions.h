#pragma once

#include <array>
#include <string_view>

namespace monitorservice {

/// What this service can beyond the operations that every one has: GET about names it, and tools ask for it
/// there before they use it. A name that was given once keeps its meaning.
constexpr std::array<std::string_view, 13> extensions{
    "about",            // GET about
    "administration",   // POST, PATCH and DELETE of projects, categories and sub-categories; GET changes
    "alarmReasons",     // alarm details have reading, reference, unit and the group with its limits
    "changes",          // GET projects/{project}/changes
    "deliveryResults",  // the answer to a delivery tells what became of its samples, and its alarm
    "deliveryUndo",     // DELETE historyDatas/{id}
    "groupSides",       // groups have sides, a warning level, and warnings in the answer
    "openAlarms",       // alarms are listed with "open"
    "pointChanges",     // PATCH pointLocations/{id}
    "pointDeletion",    // DELETE pointLocations/{id}, DELETE pointLocations/{id}/samples
    "pointSummaries",   // points are listed with "samples" and "rollup"
    "projects",         // GET projects, GET projects/{project}
    "subCategoryKinds", // sub-categories have kind, unit and decimals
};

} // namespace monitorservice
