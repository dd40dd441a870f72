#include "json/WholeNumbers.h"

#include "json/JsonText.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace monitorservice {

namespace {

constexpr std::size_t mostDigits = 18; // any number of so many digits fits 64 bits

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

// The end of the string that begins at this place, behind its closing quote.
std::size_t stringEnd(std::string_view json, std::size_t begin)
{
    std::size_t place = begin + 1;
    while (place < json.size() && json[place] != '"') {
        place += json[place] == '\\' ? 2 : 1;
    }
    return std::min(place + 1, json.size());
}

// Whether the token is nothing but digits behind an optional minus, and more of them than surely fit.
bool isLarge(std::string_view token)
{
    const std::string_view digits = token.substr(token.front() == '-' ? 1 : 0);
    return digits.size() > mostDigits && std::all_of(digits.begin(), digits.end(), isDigit);
}

void appendNumber(std::string& out, std::string_view token)
{
    double number = 0;
    const bool isRead = isLarge(token) &&
                        std::from_chars(token.data(), token.data() + token.size(), number).ec == std::errc();
    if (isRead) {
        appendJsonNumber(out, number);
    } else {
        out += token;
    }
}

} // namespace

std::string withReadableWholeNumbers(std::string_view json)
{
    std::string out;
    out.reserve(json.size());
    for (std::size_t place = 0; place < json.size();) {
        const char first = json[place];
        if (first == '"') {
            const std::size_t end = stringEnd(json, place);
            out += json.substr(place, end - place);
            place = end;
        } else if (first == '-' || isDigit(first)) {
            const std::size_t end = std::min(json.find_first_not_of("+-.0123456789Ee", place), json.size());
            appendNumber(out, json.substr(place, end - place));
            place = end;
        } else {
            out += first;
            ++place;
        }
    }
    return out;
}

} // namespace monitorservice
