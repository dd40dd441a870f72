#pragma once

#include "http/HttpMessage.h"
#include "json/JsonText.h"

#include <cstdint>
#include <string>
#include <utility>

namespace monitorservice {

/// Answers JSON text.
inline HttpResponse answerJson(std::string text, unsigned status = 200)
{
    HttpResponse response;
    response.status = status;
    response.body = std::move(text);
    return response;
}

/// Answers {"count": N}.
inline HttpResponse answerCount(std::uint64_t count)
{
    return answerJson(JsonObjectWriter().integer("count", static_cast<std::int64_t>(count)).finish());
}

/// Answers 201 with the document that was made and its address, such as "cells/ID".
inline HttpResponse answerCreated(std::string document, const std::string& address)
{
    HttpResponse response = answerJson(std::move(document), 201);
    response.headers.emplace_back("Location", "/monitor-service/" + address);
    return response;
}

} // namespace monitorservice
