#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// An array as one value of a statement, in the binary form of the server: the number of dimensions, whether
/// there are NULLs, the type of the elements, and for the one dimension its size and its first index; then
/// each element behind its length, -1 for NULL, all of them 32-bit, the most significant byte first.
class PostgresArray
{
public:
    /// https://www.postgresql.org/docs/15/catalog-pg-type.html
    enum class Type : std::uint32_t
    {
        Bytes = 17,
        Integer = 20, ///< of eight bytes
        Text = 25,
        Real = 701
    };

    explicit PostgresArray(Type type);

    void add(std::int64_t value);
    void add(double value);
    /// A text without U+0000, or bytes.
    void add(std::string_view bytes);
    template <typename Value>
    void add(const std::optional<Value>& value)
    {
        if (value) {
            add(std::int64_t{*value});
        } else {
            addNull();
        }
    }

    std::int32_t size() const { return m_size; }
    /// The value.
    std::string bytes() const;

private:
    void addNull();
    void addNumber(std::uint64_t bits);

    Type m_type;
    std::int32_t m_size = 0;
    std::string m_elements;
};

} // namespace monitorservice
