#include "store/sql/Ordering.h"

#include <algorithm>

namespace monitorservice {

namespace {

const OrderableField& fieldOf(const OrderTerm& term, const std::vector<OrderableField>& fields)
{
    const auto field = std::find_if(fields.begin(), fields.end(), [&term](const OrderableField& candidate) {
        return candidate.path == term.path;
    });
    if (field == fields.end()) {
        refuseOrder(term.path);
    }
    return *field;
}

std::string suffix(bool descending, SortedAs sortedAs, const Dialect& dialect)
{
    std::string text;
    if (sortedAs == SortedAs::Text) {
        text += dialect.binaryCollation;
    }
    text += descending ? " DESC" : "";
    if (dialect.placesNullLast && sortedAs == SortedAs::Number) {
        text += descending ? " NULLS LAST" : " NULLS FIRST";
    }
    return text;
}

} // namespace

Sql orderBy(const std::vector<OrderTerm>& terms, const std::vector<OrderableField>& fields,
            std::string_view identifier, const Dialect& dialect)
{
    Sql sql("ORDER BY ");
    std::vector<const Sql*> earlier;
    for (const OrderTerm& term : terms) {
        const OrderableField& field = fieldOf(term, fields);
        const bool isRepeated = std::any_of(earlier.begin(), earlier.end(),
                                            [&field](const Sql* value) { return *value == field.value; });
        if (isRepeated) {
            refuseRepeatedOrder(term);
        }
        sql.append(earlier.empty() ? "" : ", ")
            .append(field.value)
            .append(suffix(term.descending, field.sortedAs, dialect));
        earlier.push_back(&field.value);
    }
    const Sql ties(identifier);
    const bool byIdentifier =
        std::any_of(earlier.begin(), earlier.end(), [&ties](const Sql* value) { return *value == ties; });
    if (!byIdentifier) {
        sql.append(earlier.empty() ? "" : ", ").append(ties).append(suffix(false, SortedAs::Text, dialect));
    }
    return sql;
}

} // namespace monitorservice
