#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <string>
#include <string_view>

namespace monitorservice {

/// One entry of the audit trail: who changed what, when, and what was there before. It refers to nothing, so
/// that it outlives what it tells of, its project, too.
struct Change
{
    std::string id;
    std::string project;  ///< empty: it is about the service as a whole
    std::string category; ///< of what it is about; access to the entry is decided by it
    std::string cell;     ///< empty when it is about none; so are the members below
    std::string subCategory;
    std::string action;          ///< what happened to what, such as "sample.corrected"
    std::string subject;         ///< identifier of what was changed
    std::string name;            ///< of it, for people
    std::string before = "null"; ///< JSON: what was there
    std::string after = "null";  ///< JSON: what is there instead
    std::string delivery;        ///< history entry of the delivery that changed it; empty: it was none
    Author author;
};

/// The document under which it is stored and answered.
std::string toDocument(const Change& change);

template <>
Change fromDocument<Change>(std::string_view text);

} // namespace monitorservice
