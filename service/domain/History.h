#pragma once

#include "domain/Document.h"
#include "domain/Stamp.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace monitorservice {

/// One delivery of those that a data manage sums up.
struct History
{
    std::string id;
    std::string dataManage;
    std::int64_t number = 0;       ///< among those of its data manage, from 1; 0: it was not counted yet
    std::string lastDate;          ///< time of the latest sample held after it; empty when there is none
    std::int64_t lastCount = 0;    ///< samples held after it
    std::int64_t sentCount = 0;    ///< samples that it brought
    std::int64_t insertCount = 0;  ///< samples that it added
    std::int64_t correctCount = 0; ///< samples held to which it gave another value or flag
    std::string fileId;
    Stamp stamp;
};

/// The document under which it is stored and answered.
std::string toDocument(const History& history);

template <>
History fromDocument<History>(std::string_view text);

} // namespace monitorservice
