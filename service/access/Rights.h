#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// What a token may do with the monitorings of a category, and with what lies under them; and whether it may
/// administer the service as a whole: projects, categories, sub-categories.
enum class Right : std::uint8_t
{
    Read = 1,
    Create = 2,
    Edit = 4,
    Delete = 8,
    Administer = 16
};

/// A set of rights.
class Rights
{
public:
    constexpr Rights() = default;
    constexpr Rights(Right right) // NOLINT(google-explicit-constructor): one right is a set of one
        : m_bits(static_cast<std::uint8_t>(right))
    {
    }

    /// The set whose bits are given, as bits() gave them; bits without a meaning are dropped.
    static constexpr Rights ofBits(std::int64_t bits)
    {
        Rights rights;
        rights.m_bits = static_cast<std::uint8_t>(bits & 0x1f);
        return rights;
    }

    /// The rights named in a list such as "read,create"; nothing when a name is unknown or the list is empty.
    static std::optional<Rights> ofNames(std::string_view names);

    /// The names in the order read, create, edit, delete, administer, with commas between.
    std::string names() const;

    constexpr bool has(Right right) const { return (m_bits & static_cast<std::uint8_t>(right)) != 0; }
    /// The same without one of them.
    constexpr Rights without(Right right) const { return ofBits(m_bits & ~static_cast<std::uint8_t>(right)); }
    constexpr bool empty() const { return m_bits == 0; }
    constexpr std::int64_t bits() const { return m_bits; }

    friend constexpr Rights operator|(Rights left, Rights right)
    {
        return ofBits(left.bits() | right.bits());
    }
    friend constexpr bool operator==(Rights left, Rights right) { return left.m_bits == right.m_bits; }

private:
    std::uint8_t m_bits = 0;
};

} // namespace monitorservice
