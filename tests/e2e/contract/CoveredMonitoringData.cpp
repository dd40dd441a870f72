#include "CoveredMonitoringData.h"

bool CoveredMonitoringData::note(const char* operation, bool isSuccess)
{
    if (isSuccess) {
        succeeded().insert(operation);
    }
    return isSuccess;
}

std::set<std::string>& CoveredMonitoringData::succeeded()
{
    static std::set<std::string> operations;
    return operations;
}

std::vector<std::string> CoveredMonitoringData::missing(const std::vector<std::string>& operations)
{
    std::vector<std::string> left;
    for (const std::string& operation : operations) {
        if (succeeded().count(operation) == 0) {
            left.push_back(operation);
        }
    }
    return left;
}
