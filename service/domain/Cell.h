#pragma once

#include "domain/Document.h"
#include "domain/Links.h"
#include "domain/Stamp.h"

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// A monitoring.
struct Cell
{
    std::string id;
    std::string project;
    std::string name;
    std::string category;
    std::vector<std::string> alarmTo; ///< who is told of its alarms
    std::vector<Link> links;
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const Cell& cell);

template <>
Cell fromDocument<Cell>(std::string_view text);

} // namespace monitorservice
