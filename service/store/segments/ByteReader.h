#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// Appends a number, seven bits a byte, the lowest first; the highest bit of a byte says that another
/// follows.
void appendNumber(std::string& out, std::uint64_t number);

/// Appends an integer in two's complement as the number 2n, or -2n - 1 below zero: small ones of either sign
/// take few bytes.
void appendInteger(std::string& out, std::uint64_t integer);

/// Appends the lowest so many bytes of a number, 8 at most, the lowest one first.
void appendFixed(std::string& out, std::uint64_t number, std::size_t bytes);

/// Takes bytes of a segment from their beginning on. Each member throws SegmentError when they end too early.
class ByteReader
{
public:
    explicit ByteReader(std::string_view bytes) : m_rest(bytes) {}

    std::uint8_t byte();
    std::string_view bytes(std::uint64_t count);
    /// What appendNumber() wrote; SegmentError when it is beyond 64 bits.
    std::uint64_t number();
    /// What appendInteger() wrote.
    std::uint64_t integer();

    /// What appendFixed() wrote.
    std::uint64_t fixed(std::size_t bytes);

    std::size_t left() const { return m_rest.size(); }

private:
    std::string_view m_rest;
};

} // namespace monitorservice
