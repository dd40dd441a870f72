#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// A measuring point of a monitoring as it is stored, without its samples. Of its monitoring and
/// sub-category, name and depth together tell it from the others.
struct PointLocation
{
    std::string id;
    std::string project;
    std::string cell;
    std::string subCategory;
    std::string alias;
    std::string name;
    std::int32_t dataType = 0;
    /// What variations are counted from; nothing: it was not given, and the earliest reading is.
    std::optional<double> initialValue;
    std::string offsetDirection;
    std::string depth;            ///< empty: the point has none
    std::int64_t insertCount = 0; ///< samples held
    std::int32_t lastCount = 0;   ///< count of the latest sample
    std::string lastDate;         ///< time of the latest sample; empty when there is none
    std::string fileId;           ///< file of the latest delivery that changed the point; may be empty
    std::string links = "[]";     ///< JSON array of {"type": relation, "rId": identifier}
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const PointLocation& pointLocation);

template <>
PointLocation fromDocument<PointLocation>(std::string_view text);

/// The initial value in such a document alone: a list of many points needs nothing else of it. Throws
/// DamagedDocument.
std::optional<double> initialValueIn(std::string_view document);

} // namespace monitorservice
