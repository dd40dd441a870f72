#pragma once

#include "query/PatternSearch.h"
#include "query/Where.h"

#include <simdjson.h>

#include <cstdint>

namespace monitorservice {

/// Tries the documents of one query against its where document, with one step budget for all of them: however
/// many documents there are, slow patterns end the query after a bounded time. For use by one thread.
class Matcher
{
public:
    explicit Matcher(Where where, std::uint64_t stepBudget = PatternSearch::defaultStepBudget);

    /// Throws QueryError with status 422, naming the pattern, when a pattern takes too many steps on this
    /// document or the budget of the query is used up.
    bool matches(simdjson::dom::element document);

private:
    Where m_where;
    PatternSearch m_search;
};

} // namespace monitorservice
