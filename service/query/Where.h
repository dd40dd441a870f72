#pragma once

#include "query/Condition.h"

#include <simdjson.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace monitorservice {

/// A parsed where document: a list of conditions that must all hold. What it means is what a Matcher says of
/// documents. Immutable, cheap to copy, usable from any thread.
///
/// The language is described in docs/query-language.md.
class Where
{
public:
    static constexpr std::size_t maximumBytes = 8 * 1024;
    static constexpr std::size_t maximumDepth = 8;
    static constexpr std::size_t maximumListMembers = 1000;
    static constexpr std::size_t maximumPatterns = 32;

    /// The where document that every document matches, `{}`.
    Where() = default;

    /// Throws QueryError with status 400 when `json` is not a where document.
    static Where parse(std::string_view json);

    /// The one condition that what stands at the path equals the text. The path is taken as parse() takes it;
    /// the text is UTF-8.
    static Where equals(std::string_view path, std::string_view text);

    /// Whether there are no conditions, so that every document matches.
    bool isEmpty() const { return m_conditions.empty(); }

    /// In the order of the where document; a path with several operators has one condition for each.
    const std::vector<Condition>& conditions() const { return m_conditions; }

    /// The conditions on exactly these paths, and the others: what is asked of a sample apart from what is
    /// asked of its point.
    std::pair<Where, Where> split(const std::vector<std::string_view>& paths) const;

    /// The same conditions, with the names `instead` put for the first name of every path that begins with
    /// `member`: for documents that hold under another name what they are asked for.
    Where readAs(std::string_view member, const std::vector<std::string>& instead) const;

private:
    /// Owns the JSON values that the conditions' operands refer to.
    std::shared_ptr<const simdjson::dom::document> m_values;
    std::vector<Condition> m_conditions;
};

} // namespace monitorservice
