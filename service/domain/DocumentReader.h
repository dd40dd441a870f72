#pragma once

#include "domain/Document.h"
#include "domain/LimitSide.h"
#include "domain/Stamp.h"

#include <simdjson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// The members of a stored document, each of which must be there. Every member throws DamagedDocument.
class DocumentReader
{
public:
    /// `kind` names the document in messages. A thread has one reader at a time: what they parse with is
    /// kept.
    DocumentReader(const char* kind, std::string_view text);

    std::string text(const char* name) const;
    std::int64_t integer(const char* name) const;
    /// A whole number of 32 bits.
    std::int32_t smallInteger(const char* name) const;
    std::optional<std::int32_t> smallIntegerOrNull(const char* name) const;
    double number(const char* name) const;
    bool boolean(const char* name) const;
    std::vector<std::string> texts(const char* name) const;
    /// A value of any shape, as minified JSON.
    std::string json(const char* name) const;
    simdjson::dom::array array(const char* name) const;
    LimitSide limitSide(const char* name) const;
    Stamp stamp() const;

    /// Tells that the document cannot be read for this reason.
    [[noreturn]] void refuse(const std::string& reason) const;

private:
    template <typename Value>
    Value member(const char* name) const;

    const char* m_kind;
    simdjson::dom::object m_object;
};

} // namespace monitorservice
