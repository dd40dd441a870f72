#include "http/HttpMessage.h"

#include <array>
#include <cstdio>

namespace monitorservice {

namespace {

std::string jsonString(std::string_view text)
{
    std::string out = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            out += '\\';
            out += character;
        } else if (static_cast<unsigned char>(character) < 0x20) {
            std::array<char, 7> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
            out += escape.data();
        } else {
            out += character;
        }
    }
    return out += '"';
}

} // namespace

HttpResponse errorResponse(unsigned status, std::string_view message)
{
    HttpResponse response;
    response.status = status;
    response.body = "{\"message\":" + jsonString(message) + ",\"status\":" + std::to_string(status) + "}";
    if (status == 503)
        response.headers.emplace_back("Retry-After", "1");
    return response;
}

} // namespace monitorservice
