#include "store/postgres/PostgresValues.h"

#include "store/StoreError.h"

#include <array>
#include <charconv>

namespace monitorservice {

void PostgresValues::add(double value)
{
    // The shortest text that reads as the same number.
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    addText(std::string(text.data(), end));
}

void PostgresValues::add(const std::string& value)
{
    if (value.find('\0') != std::string::npos) {
        throw StoreError(StoreFailure::Conflict, "a text holds U+0000, which the database cannot keep");
    }
    addText(value);
}

void PostgresValues::appendTo(std::string& key) const
{
    for (const Value& value : m_values) {
        key += '\0';
        key += value.bytes ? std::to_string(value.bytes->size()) + ':' + *value.bytes : std::string("NULL");
    }
}

std::vector<const char*> PostgresValues::pointers() const
{
    std::vector<const char*> pointers;
    pointers.reserve(m_values.size());
    for (const Value& value : m_values) {
        pointers.push_back(value.bytes ? value.bytes->c_str() : nullptr);
    }
    return pointers;
}

std::vector<int> PostgresValues::lengths() const
{
    std::vector<int> lengths;
    lengths.reserve(m_values.size());
    for (const Value& value : m_values) {
        lengths.push_back(value.bytes ? static_cast<int>(value.bytes->size()) : 0);
    }
    return lengths;
}

std::vector<int> PostgresValues::formats() const
{
    std::vector<int> formats;
    formats.reserve(m_values.size());
    for (const Value& value : m_values) {
        formats.push_back(value.format);
    }
    return formats;
}

} // namespace monitorservice
