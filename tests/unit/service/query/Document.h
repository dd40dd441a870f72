#pragma once

#include <simdjson.h>

#include <stdexcept>
#include <string>

namespace monitorservice {

/// A parsed JSON document that owns its values.
class Document
{
public:
    explicit Document(std::string json) : m_json(std::move(json))
    {
        const simdjson::error_code error =
            m_parser.parse_into_document(m_values, m_json.data(), m_json.size()).get(m_root);
        if (error != simdjson::SUCCESS) {
            throw std::invalid_argument("not JSON: " + m_json);
        }
    }

    // The root refers to the values by address.
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const std::string& json() const { return m_json; }
    simdjson::dom::element root() const { return m_root; }

private:
    std::string m_json;
    simdjson::dom::parser m_parser;
    simdjson::dom::document m_values;
    simdjson::dom::element m_root;
};

} // namespace monitorservice
