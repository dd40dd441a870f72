#include "administration/TextCheck.h"

#include "administration/AdministrationError.h"

#include <simdjson.h>

#include <algorithm>

namespace monitorservice {

namespace {

bool isControl(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f;
}

} // namespace

std::string faultOf(std::string_view text)
{
    if (!simdjson::validate_utf8(text.data(), text.size())) {
        return "is not UTF-8";
    }
    if (text.find_first_not_of(' ') == std::string_view::npos) {
        return "is empty";
    }
    return std::any_of(text.begin(), text.end(), isControl) ? "has a control character" : "";
}

void requireText(const std::string& member, const std::string& text)
{
    if (const std::string fault = faultOf(text); !fault.empty()) {
        throw AdministrationError(AdministrationFailure::BadValue, member, text, fault);
    }
}

void requireTextOrNone(const std::string& member, const std::string& text)
{
    if (!text.empty()) {
        requireText(member, text);
    }
}

} // namespace monitorservice
