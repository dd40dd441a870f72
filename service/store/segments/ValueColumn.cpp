#include "store/segments/ValueColumn.h"

#include "store/segments/IntegerColumn.h"
#include "store/segments/SegmentError.h"
#include "store/segments/XorColumn.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

namespace monitorservice {

namespace {

// The first byte of values is the scale of decimals, or this.
constexpr std::uint8_t xored = 0xFF;

// Powers of ten that a double holds, so a quotient is rounded once: it is the double nearest to the decimal.
constexpr std::array<double, 10> powers{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
constexpr double largestMantissa = 9007199254740992; // 2^53: up to it, doubles hold every integer
constexpr std::size_t valuesPerException = 8; // at least; with more exceptions, decimals cannot be smaller
constexpr std::size_t bytesOfDouble = 8;

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double doubleOf(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

double decimal(std::int64_t mantissa, std::size_t scale)
{
    return static_cast<double>(mantissa) / powers[scale];
}

// The mantissa that gives the value bit for bit. There is none for the zero below zero.
std::optional<std::int64_t> mantissaOf(double value, std::size_t scale)
{
    const double scaled = value * powers[scale];
    if (!(std::abs(scaled) <= largestMantissa)) {
        return std::nullopt;
    }
    const auto mantissa = static_cast<std::int64_t>(std::llround(scaled));
    return bitsOf(decimal(mantissa, scale)) == bitsOf(value) ? std::optional(mantissa) : std::nullopt;
}

struct Exception
{
    std::size_t index = 0;
    std::uint64_t bits = 0;
};

struct Decimals
{
    std::size_t scale = 0;
    std::vector<std::uint64_t> mantissas;
    std::vector<Exception> exceptions;
};

// The smallest at which all values are decimals, but for some that are none of any scale. Nothing when these
// are too many.
std::optional<std::size_t> scaleOf(const std::vector<double>& values)
{
    std::size_t scale = 0;
    std::size_t exceptionsLeft = values.size() / valuesPerException;
    for (const double value : values) {
        std::size_t needed = scale;
        while (needed < powers.size() && !mantissaOf(value, needed)) {
            ++needed;
        }
        if (needed < powers.size()) {
            scale = needed;
        } else if (exceptionsLeft-- == 0) {
            return std::nullopt;
        }
    }
    return scale;
}

Decimals decimalsOf(const std::vector<double>& values, std::size_t scale)
{
    Decimals decimals;
    decimals.scale = scale;
    decimals.mantissas.reserve(values.size());
    std::int64_t last = 0; // stands for an exception, too, so that it costs little
    for (const double value : values) {
        const std::optional<std::int64_t> mantissa = mantissaOf(value, scale);
        if (!mantissa) {
            decimals.exceptions.push_back({decimals.mantissas.size(), bitsOf(value)});
        }
        last = mantissa.value_or(last);
        decimals.mantissas.push_back(static_cast<std::uint64_t>(last));
    }
    return decimals;
}

void appendDecimals(std::string& out, Decimals decimals)
{
    out += static_cast<char>(decimals.scale);
    appendNumber(out, decimals.exceptions.size());
    std::size_t next = 0;
    for (const Exception& exception : decimals.exceptions) {
        appendNumber(out, exception.index - next);
        appendFixed(out, exception.bits, bytesOfDouble);
        next = exception.index + 1;
    }
    appendIntegers(out, std::move(decimals.mantissas));
}

std::vector<Exception> readExceptions(ByteReader& bytes, std::size_t count)
{
    std::vector<Exception> exceptions;
    std::size_t next = 0;
    for (std::uint64_t left = bytes.number(); left > 0; --left) {
        const std::uint64_t distance = bytes.number();
        if (distance >= count - next) {
            throw SegmentError("the segment has an exception beyond its samples");
        }
        exceptions.push_back({next + distance, bytes.fixed(bytesOfDouble)});
        next = exceptions.back().index + 1;
    }
    return exceptions;
}

std::vector<double> readDecimals(ByteReader& bytes, std::size_t scale, std::size_t count)
{
    if (scale >= powers.size()) {
        throw SegmentError("the segment has values of an unknown form");
    }
    const std::vector<Exception> exceptions = readExceptions(bytes, count);
    std::vector<double> values;
    values.reserve(count);
    for (const std::uint64_t mantissa : readIntegers(bytes, count)) {
        values.push_back(decimal(static_cast<std::int64_t>(mantissa), scale));
    }
    for (const Exception& exception : exceptions) {
        values[exception.index] = doubleOf(exception.bits);
    }
    return values;
}

} // namespace

void appendValues(std::string& out, const std::vector<double>& values)
{
    std::string smallest(1, static_cast<char>(xored));
    std::vector<std::uint64_t> bits(values.size());
    std::transform(values.begin(), values.end(), bits.begin(), bitsOf);
    appendXored(smallest, bits);
    if (const std::optional<std::size_t> scale = scaleOf(values)) {
        std::string column;
        appendDecimals(column, decimalsOf(values, *scale));
        if (column.size() <= smallest.size()) {
            smallest = std::move(column);
        }
    }
    out += smallest;
}

std::vector<double> readValues(ByteReader& bytes, std::size_t count)
{
    const std::uint8_t form = bytes.byte();
    if (form != xored) {
        return readDecimals(bytes, form, count);
    }
    const std::vector<std::uint64_t> bits = readXored(bytes, count);
    std::vector<double> values(count);
    std::transform(bits.begin(), bits.end(), values.begin(), doubleOf);
    return values;
}

} // namespace monitorservice
