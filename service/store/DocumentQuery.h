#pragma once

#include "query/Order.h"
#include "query/Where.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// Which documents of a project, or of all projects, in which order, and which page of them.
struct DocumentQuery
{
    std::string project;
    /// Whatever the project; entries of the audit trail may be of none.
    bool everyProject = false;
    std::optional<std::vector<std::string>> categories; ///< only these; nothing: every category
    /// Only those that belong to this document: to a monitoring, a data manage, an alarm or an alarm detail,
    /// as the kind says. Not for cells and sub-categories.
    std::optional<std::string> parent = std::nullopt;
    /// Only those with one of these identifiers; nothing: whatever it is. Choosing points with their samples
    /// reads none of it.
    std::optional<std::vector<std::string>> identifiers = std::nullopt;
    const Where* where = nullptr; ///< null: no condition
    /// The most significant first. Texts are ordered byte by byte, times as instants, depths as numbers; what
    /// is missing stands before everything else. Ties, and no order at all, are settled by ascending
    /// identifier: two pages of one query never overlap.
    std::vector<OrderTerm> order = {};
    std::uint64_t skip = 0;
    /// The most documents given; all of them unless it is set. Counting reads neither skip nor limit.
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

} // namespace monitorservice
