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

OrderTerm readTerm(std::string_view text)
{
    const bool descending = !text.empty() && text.front() == '-';
    const std::string_view path = text.substr(descending ? 1 : 0);
    if (path.empty()) {
        refuse("a name is missing");
    }
    return {std::string(path), descending};
}

} // namespace

std::vector<OrderTerm> parseOrder(std::string_view text)
{
    std::vector<OrderTerm> terms;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        OrderTerm term = readTerm(text.substr(begin, end - begin));
        const bool twice = std::any_of(terms.begin(), terms.end(), [&term](const OrderTerm& earlier) {
            return earlier.path == term.path;
        });
        if (twice) {
            refuseRepeatedOrder(term);
        }
        terms.push_back(std::move(term));
        begin = end + 1;
    }
    return terms;
}

void refuseOrder(std::string_view path)
{
    refuse("cannot order by " + quotedText(path));
}

void refuseRepeatedOrder(const OrderTerm& term)
{
    refuse(quotedText((term.descending ? "-" : "") + term.path) + " orders by the same field again");
}

} // namespace monitorservice
