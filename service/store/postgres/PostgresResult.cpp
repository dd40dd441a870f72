#include "store/postgres/PostgresResult.h"

#include "store/StoreError.h"

#include <charconv>
#include <cstring>

namespace monitorservice {

namespace {

std::uint64_t bigEndian(std::string_view bytes)
{
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

[[noreturn]] void refuse(const char* what)
{
    throw StoreError(StoreFailure::Internal, std::string("the database gave something else than ") + what);
}

} // namespace

std::string_view PostgresResult::errorField(int field) const
{
    const char* const value = PQresultErrorField(m_result.get(), field);
    return value == nullptr ? std::string_view() : value;
}

std::int64_t PostgresResult::affected() const
{
    const std::string_view text = PQcmdTuples(m_result.get());
    std::int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::int64_t PostgresResult::integer(int row, int column) const
{
    const std::string_view bytes = view(row, column);
    const std::uint64_t value = bigEndian(bytes);
    switch (bytes.size()) {
    case 2:
        return static_cast<std::int16_t>(value);
    case 4:
        return static_cast<std::int32_t>(value);
    case 8:
        return static_cast<std::int64_t>(value);
    default:
        refuse("a whole number");
    }
}

double PostgresResult::real(int row, int column) const
{
    const std::string_view bytes = view(row, column);
    double value = 0;
    if (bytes.size() != sizeof value) {
        refuse("a floating-point number");
    }
    const std::uint64_t bits = bigEndian(bytes);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::string_view PostgresResult::view(int row, int column) const
{
    return {PQgetvalue(m_result.get(), row, column),
            static_cast<std::size_t>(PQgetlength(m_result.get(), row, column))};
}

std::optional<std::int64_t> PostgresResult::optionalInteger(int row, int column) const
{
    return isNull(row, column) ? std::nullopt : std::optional(integer(row, column));
}

std::optional<std::string> PostgresResult::optionalText(int row, int column) const
{
    return isNull(row, column) ? std::nullopt : std::optional(text(row, column));
}

} // namespace monitorservice
