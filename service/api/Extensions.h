#pragma once

#include <array>
#include <string_view>

namespace monitorservice {

/// What this service can beyond the operations that every one has: GET about names it, and tools ask for it
/// there before they use it. A name that was given once keeps its meaning.
constexpr std::array<std::string_view, 3> extensions{
    "about",            // GET about
    "projects",         // GET projects, GET projects/{project}
    "subCategoryKinds", // sub-categories have kind, unit and decimals
};

} // namespace monitorservice
