#pragma once

#include <cstdint>
#include <string>

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
    double initialValue = 0; ///< what the total variation is counted from
    std::string offsetDirection;
    std::string depth;            ///< empty: the point has none
    std::int64_t insertCount = 0; ///< samples held
    std::int32_t lastCount = 0;   ///< count of the latest sample
    std::string lastDate;         ///< time of the latest sample; empty when there is none
    std::string fileId;           ///< file of the latest delivery that changed the point; may be empty
    std::string links = "[]";     ///< JSON array of {"type": relation, "rId": identifier}
    std::string createdAt;        ///< times as isoText() writes them
    std::string createdBy;
    std::string updatedAt;
    std::string updatedBy;
};

/// The document under which it is stored.
std::string toDocument(const PointLocation& point);

/// The reverse of toDocument(). Throws StoreError when the text is no such document.
PointLocation pointLocationOf(const std::string& document);

} // namespace monitorservice
