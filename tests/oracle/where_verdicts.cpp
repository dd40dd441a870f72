// Reads pairs {"doc": "...", "where": "..."}, one JSON object a line, both members JSON documents as text,
// and writes what the matcher says of each: true, false, or why it refuses the where document.

#include "query/Matcher.h"
#include "query/QueryError.h"

#include <simdjson.h>

#include <exception>
#include <iostream>
#include <string>
#include <string_view>

namespace {

std::string verdict(std::string_view document, std::string_view where)
{
    try {
        simdjson::dom::parser parser;
        const simdjson::dom::element root = parser.parse(document.data(), document.size());
        return monitorservice::Matcher(monitorservice::Where::parse(where)).matches(root) ? "true" : "false";
    } catch (const monitorservice::QueryError& error) {
        return error.what();
    }
}

} // namespace

int main()
{
    try {
        std::ios::sync_with_stdio(false);
        simdjson::dom::parser parser;
        for (std::string line; std::getline(std::cin, line);) {
            const simdjson::dom::element pair = parser.parse(line);
            std::cout << verdict(pair["doc"], pair["where"]) << '\n';
        }
    } catch (const std::exception& error) {
        std::cerr << "where_verdicts: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
