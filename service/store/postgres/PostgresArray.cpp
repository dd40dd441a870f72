#include "store/postgres/PostgresArray.h"

#include <cstring>

namespace monitorservice {

namespace {

template <typename Number>
void appendNumber(std::string& out, Number number)
{
    for (auto shift = static_cast<int>(sizeof number * 8) - 8; shift >= 0; shift -= 8) {
        out += static_cast<char>(number >> static_cast<unsigned>(shift) & 0xffU);
    }
}

} // namespace

PostgresArray::PostgresArray(Type type) : m_type(type) {}

void PostgresArray::add(std::int64_t value)
{
    addNumber(static_cast<std::uint64_t>(value));
}

void PostgresArray::add(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    addNumber(bits);
}

void PostgresArray::add(std::string_view bytes)
{
    appendNumber(m_elements, static_cast<std::uint32_t>(bytes.size()));
    m_elements += bytes;
    ++m_size;
}

void PostgresArray::addNull()
{
    appendNumber(m_elements, UINT32_MAX);
    ++m_size;
}

std::string PostgresArray::bytes() const
{
    std::string array;
    array.reserve(20 + m_elements.size());
    appendNumber(array, std::uint32_t{m_size == 0 ? 0U : 1U});
    appendNumber(array, std::uint32_t{1});
    appendNumber(array, static_cast<std::uint32_t>(m_type));
    if (m_size > 0) {
        appendNumber(array, static_cast<std::uint32_t>(m_size));
        appendNumber(array, std::uint32_t{1});
    }
    return array + m_elements;
}

void PostgresArray::addNumber(std::uint64_t bits)
{
    appendNumber(m_elements, std::uint32_t{sizeof bits});
    appendNumber(m_elements, bits);
    ++m_size;
}

} // namespace monitorservice
