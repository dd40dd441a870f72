#pragma once

#include "domain/Document.h"
#include "domain/DocumentWriter.h"
#include "http/HttpMessage.h"
#include "json/JsonText.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

/// The document with what is allowed of it and hardly meant, if there is anything: the member "warnings".
inline std::string withWarnings(std::string document, const std::vector<std::string>& warnings)
{
    if (warnings.empty()) {
        return document;
    }
    return std::string(openedDocument(document)) + ",\"warnings\":" + textArray(warnings) + "}";
}

/// Answers 201 with the document that was made and its address, such as "cells/ID".
inline HttpResponse answerCreated(std::string document, const std::string& address)
{
    HttpResponse response = answerJson(std::move(document), 201);
    response.headers.emplace_back("Location", "/monitor-service/" + address);
    return response;
}

} // namespace monitorservice
