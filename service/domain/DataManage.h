#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// What was delivered for a monitoring and sub-category, as of the latest delivery.
struct DataManage
{
    std::string id;
    std::string project;
    std::string cell;
    std::string subCategory;
    std::string lastDate;         ///< time of the latest sample; empty when there is none
    std::int64_t lastCount = 0;   ///< samples in the latest delivery
    std::int64_t sampleCount = 0; ///< samples held
    std::int64_t deliveries = 0;  ///< number of the latest delivery among those counted
    std::string fileId;           ///< file of the latest delivery; may be empty
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const DataManage& dataManage);

template <>
DataManage fromDocument<DataManage>(std::string_view text);

} // namespace monitorservice
