#pragma once

#include "store/postgres/PostgresArray.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace monitorservice {

/// Bytes that are not text.
struct PostgresBytes
{
    std::string_view bytes;
};

/// The values of the placeholders of a statement, as libpq sends them.
class PostgresValues
{
public:
    void add(std::int64_t value) { addText(std::to_string(value)); }
    void add(int value) { addText(std::to_string(value)); }
    void add(double value);
    /// Throws StoreError with StoreFailure::Conflict for a text with U+0000, which no column can hold.
    void add(const std::string& value);
    void add(std::string_view value) { add(std::string(value)); }
    void add(const char* value) { add(std::string(value)); }
    void add(const PostgresBytes& value) { m_values.push_back({std::string(value.bytes), 1}); }
    void add(const PostgresArray& value) { m_values.push_back({value.bytes(), 1}); }
    template <typename Value>
    void add(const std::optional<Value>& value)
    {
        if (value) {
            add(*value);
        } else {
            m_values.push_back({std::nullopt, 0});
        }
    }

    int count() const { return static_cast<int>(m_values.size()); }
    /// Appends what tells them from all others.
    void appendTo(std::string& key) const;
    std::vector<const char*> pointers() const;
    std::vector<int> lengths() const;
    std::vector<int> formats() const;

private:
    struct Value
    {
        std::optional<std::string> bytes; ///< nothing for NULL
        int format;                       ///< 0 text, 1 binary
    };

    void addText(std::string text) { m_values.push_back({std::move(text), 0}); }

    std::vector<Value> m_values;
};

} // namespace monitorservice
