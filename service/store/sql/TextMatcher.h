#pragma once

#include "domain/Document.h"
#include "query/Matcher.h"

#include <simdjson.h>

#include <string>
#include <string_view>

namespace monitorservice {

/// Asks the matcher about one JSON text after another.
class TextMatcher
{
public:
    explicit TextMatcher(const Where& where) : m_matcher(where) {}

    /// Throws DamagedDocument when the text is not JSON, and what Matcher::matches() throws.
    bool matches(std::string_view json)
    {
        simdjson::dom::element element;
        if (const auto error = m_parser.parse(json.data(), json.size()).get(element)) {
            throw DamagedDocument(std::string("a stored document is damaged: ") +
                                  simdjson::error_message(error));
        }
        return m_matcher.matches(element);
    }

private:
    simdjson::dom::parser m_parser;
    Matcher m_matcher;
};

} // namespace monitorservice
