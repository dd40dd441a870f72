#include "domain/DocumentReader.h"

#include <limits>

namespace monitorservice {

namespace {

// Its buffers are kept: a delivery reads a document for every point that it names.
simdjson::dom::parser& keptParser()
{
    thread_local simdjson::dom::parser parser;
    return parser;
}

} // namespace

std::string_view openedDocument(std::string_view text)
{
    if (text.empty() || text.back() != '}') {
        throw DamagedDocument("a stored document is damaged: it does not end in a brace");
    }
    text.remove_suffix(1);
    return text;
}

DocumentReader::DocumentReader(const char* kind, std::string_view text) : m_kind(kind)
{
    if (const auto error = keptParser().parse(text.data(), text.size()).get(m_object)) {
        refuse(simdjson::error_message(error));
    }
}

void DocumentReader::refuse(const std::string& reason) const
{
    throw DamagedDocument(std::string("a stored ") + m_kind + " is damaged: " + reason);
}

template <typename Value>
Value DocumentReader::member(const char* name) const
{
    Value value{};
    if (const auto error = m_object[name].get(value)) {
        refuse(std::string("\"") + name + "\": " + simdjson::error_message(error));
    }
    return value;
}

std::string DocumentReader::text(const char* name) const
{
    return std::string(member<std::string_view>(name));
}

std::int64_t DocumentReader::integer(const char* name) const
{
    return member<std::int64_t>(name);
}

std::int32_t DocumentReader::smallInteger(const char* name) const
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t number = integer(name);
    if (number < Limits::min() || number > Limits::max()) {
        refuse(std::string("\"") + name + "\" has more than 32 bits");
    }
    return static_cast<std::int32_t>(number);
}

std::optional<std::int32_t> DocumentReader::smallIntegerOrNull(const char* name) const
{
    if (member<simdjson::dom::element>(name).is_null()) {
        return std::nullopt;
    }
    return smallInteger(name);
}

double DocumentReader::number(const char* name) const
{
    return member<double>(name);
}

bool DocumentReader::boolean(const char* name) const
{
    return member<bool>(name);
}

simdjson::dom::array DocumentReader::array(const char* name) const
{
    return member<simdjson::dom::array>(name);
}

std::vector<std::string> DocumentReader::texts(const char* name) const
{
    std::vector<std::string> texts;
    for (const simdjson::dom::element element : array(name)) {
        std::string_view text;
        if (element.get(text) != simdjson::SUCCESS) {
            refuse(std::string("\"") + name + "\" holds something that is not a text");
        }
        texts.emplace_back(text);
    }
    return texts;
}

std::string DocumentReader::json(const char* name) const
{
    return simdjson::minify(member<simdjson::dom::element>(name));
}

LimitSide DocumentReader::limitSide(const char* name) const
{
    const std::optional<LimitSide> side = limitSideOf(text(name));
    if (!side) {
        refuse(std::string("\"") + name + "\" is no side that there is");
    }
    return *side;
}

Stamp DocumentReader::stamp() const
{
    return {text("createdAt"), text("createdBy"), text("updatedAt"), text("updatedBy")};
}

} // namespace monitorservice
