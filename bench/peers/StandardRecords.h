#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The records of points and samples as a program without Qt would keep them.
struct StandardSample
{
    std::int32_t count = 0;
    std::int64_t time = 0; ///< milliseconds since 1970, UTC
    int offset = 0;        ///< minutes
    double value = 0;
    std::string timeFlag;
};

struct StandardPoint
{
    std::string id;
    std::string cellId;
    std::string name;
    std::string category;
    std::int32_t dataType = 0;
    double initialValue = 0;
    std::string offsetDirection;
    std::string depth;
    std::int32_t insertCount = 0;
    std::int32_t lastCount = 0;
    std::int64_t lastDate = 0;
    std::vector<StandardSample> data;
    std::map<std::string, std::vector<std::string>> links;
    std::int64_t createdAt = 0;
    std::string createdBy;
    std::int64_t updatedAt = 0;
    std::string updatedBy;
};

using StandardPoints = std::vector<StandardPoint>;

/// ISO 8601 with milliseconds and "Z" or an offset; 0 for anything else.
std::int64_t millisecondsOf(std::string_view text, int* offset = nullptr);

/// The records of a reply, by nlohmann/json.
StandardPoints pointsByNlohmann(const std::string& body);
/// The records of a reply, by simdjson's on-demand interface.
StandardPoints pointsBySimdjson(const std::string& body);
