#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Points of a monitoring with the limits of their variation, as it is stored.
struct Group
{
    std::string id;
    std::string project;
    std::string cell;
    std::string subCategory;
    std::string name;
    std::vector<std::string> points;   ///< names of point locations of the monitoring and the sub-category
    std::int32_t dayVariationType = 0; ///< 0: in the unit of the values, 1: in percent of the initial value
    double dayVariation = 0;           ///< limit of the daily variation; 0: none
    double totalVariation = 0;         ///< limit of the total variation in the unit of the values; 0: none
    std::string viewPort;              ///< nothing sets it yet
    std::string createdAt;             ///< times as isoText() writes them
    std::string createdBy;
    std::string updatedAt;
    std::string updatedBy;
};

/// What a client sends of a group; a member that it did not send is absent.
struct GroupBody
{
    std::optional<std::string> project;
    std::optional<std::string> cell;
    std::optional<std::string> subCategory;
    std::optional<std::string> name;
    std::optional<std::vector<std::string>> points;
    std::optional<std::int32_t> dayVariationType;
    std::optional<double> dayVariation;
    std::optional<double> totalVariation;
};

/// Reads the body of a POST or PUT. Throws ApiError 400 that names the member.
GroupBody parseGroupBody(std::string_view json);

/// Takes over the members that were sent, but for the project. Gives whether anything changed.
bool applyTo(Group& group, const GroupBody& body);

/// The document under which it is stored and answered.
std::string toDocument(const Group& group);

/// The reverse of toDocument(). Throws StoreError when the text is no such document.
Group groupOf(const std::string& document);

} // namespace monitorservice
