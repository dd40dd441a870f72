#include "notify/MailEncoding.h"

#include <date/date.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace monitorservice {

namespace {

bool isControl(char character)
{
    return static_cast<unsigned char>(character) < ' ' || character == '\x7f';
}

bool isAscii(char character)
{
    return static_cast<unsigned char>(character) < 0x80;
}

std::string base64(std::string_view bytes)
{
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0'); // it writes a zero behind
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

// As many bytes as a word holds, and no part of a character.
std::size_t lengthOfWord(std::string_view text)
{
    constexpr std::size_t most = 39; // 64 columns, which leaves room for the name of the field
    if (text.size() <= most) {
        return text.size();
    }
    std::size_t length = most;
    while (length > 1 && (static_cast<unsigned char>(text[length]) & 0xc0U) == 0x80U) {
        --length;
    }
    return length;
}

std::string octet(char character)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    return {'=', digits[byte >> 4U], digits[byte & 0x0fU]};
}

void appendQuotedLine(std::string& out, std::string_view line)
{
    constexpr std::size_t longest = 75; // and the "=" of a line that goes on
    std::size_t length = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char character = line[i];
        const bool isBlank = character == ' ' || character == '\t';
        const bool isPlain =
            isBlank ? i + 1 < line.size() : isAscii(character) && !isControl(character) && character != '=';
        const std::string written = isPlain ? std::string(1, character) : octet(character);
        if (length + written.size() > longest) {
            out += "=\r\n";
            length = 0;
        }
        out += written;
        length += written.size();
    }
    out += "\r\n";
}

} // namespace

std::string inOneLine(std::string_view text)
{
    std::string line(text);
    std::replace_if(line.begin(), line.end(), isControl, ' ');
    return line;
}

std::string headerText(std::string_view text)
{
    constexpr std::size_t longestPlain = 64;
    const std::string line = inOneLine(text);
    if (line.size() <= longestPlain && std::all_of(line.begin(), line.end(), isAscii) &&
        line.find("=?") == std::string::npos) {
        return line;
    }
    std::string words;
    for (std::string_view left = line; !left.empty();) {
        const std::size_t length = lengthOfWord(left);
        words += words.empty() ? "" : "\r\n ";
        words += "=?UTF-8?B?" + base64(left.substr(0, length)) + "?=";
        left.remove_prefix(length);
    }
    return words;
}

std::string quotedPrintable(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        appendQuotedLine(out, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

std::string mailDate(Instant instant)
{
    static constexpr std::array<const char*, 7> days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array<const char*, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const date::sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(instant)};
    const date::sys_days day = date::floor<date::days>(time);
    const date::year_month_day date(day);
    const std::string iso = isoText(instant); // its digits are those wanted here
    return std::string(days.at(date::weekday(day).c_encoding())) + ", " + iso.substr(8, 2) + ' ' +
           months.at(static_cast<unsigned>(date.month()) - 1) + ' ' + iso.substr(0, 4) + ' ' +
           iso.substr(11, 8) + " +0000";
}

} // namespace monitorservice
