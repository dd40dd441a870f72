#include "query/Order.h"

#include "query/QueryError.h"
#include "query/QuotedText.h"

#include <algorithm>

namespace monitorservice {

namespace {

[[noreturn]] void refuse(const std::string& what)
{
    throw QueryError(400, "order: " + what);
}

OrderTerm readTerm(std::string_view text, const std::vector<SortableField>& fields)
{
    const bool falling = !text.empty() && text.front() == '-';
    const std::string_view path = text.substr(falling ? 1 : 0);
    if (path.empty()) {
        refuse("a name is missing");
    }
    const auto field = std::find_if(fields.begin(), fields.end(), [path](const SortableField& candidate) {
        return candidate.path == path;
    });
    if (field == fields.end()) {
        refuse("cannot order by " + quotedText(path));
    }
    return {field->sql, falling};
}

} // namespace

std::vector<OrderTerm> parseOrder(std::string_view text, const std::vector<SortableField>& fields)
{
    std::vector<OrderTerm> terms;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string_view part = text.substr(begin, end - begin);
        OrderTerm term = readTerm(part, fields);
        const bool twice = std::any_of(terms.begin(), terms.end(),
                                       [&term](const OrderTerm& earlier) { return earlier.sql == term.sql; });
        if (twice) {
            refuse(quotedText(part) + " orders by the same field again");
        }
        terms.push_back(std::move(term));
        begin = end + 1;
    }
    return terms;
}

std::string orderBy(const std::vector<OrderTerm>& terms, std::string_view identifierColumn)
{
    std::string sql = "ORDER BY ";
    bool byIdentifier = false;
    for (const OrderTerm& term : terms) {
        sql += term.sql + (term.falling ? " DESC, " : ", ");
        byIdentifier = byIdentifier || term.sql == identifierColumn;
    }
    if (byIdentifier) {
        return sql.substr(0, sql.size() - 2);
    }
    return sql + std::string(identifierColumn);
}

} // namespace monitorservice
