#include "ExportedOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace {

const std::string className = "RKMonitoringData::";

bool isOperation(const std::string& member)
{
    static const std::array<const char*, 5> others{"RKMonitoringData(", "~RKMonitoringData(", "operator=(",
                                                   "instance(", "clear("};
    return std::none_of(others.begin(), others.end(),
                        [&](const char* other) { return member.rfind(other, 0) == 0; });
}

} // namespace

std::vector<std::string> exportedOperations()
{
    std::ifstream file(RK_EXPORTED_MEMBERS);
    EXPECT_TRUE(file) << "cannot read " << RK_EXPORTED_MEMBERS;
    std::vector<std::string> operations;
    for (std::string line; std::getline(file, line);) {
        EXPECT_EQ(line.rfind(className, 0), 0U) << line;
        const std::string member = line.substr(className.size());
        if (isOperation(member)) {
            operations.push_back(member);
        }
    }
    return operations;
}
