#include "store/sqlite/ServiceLock.h"

#include "store/StoreError.h"

#include <boost/interprocess/exceptions.hpp>

#include <fstream>
#include <system_error>

namespace monitorservice {

namespace fs = std::filesystem;

ServiceLock::ServiceLock(const fs::path& dataFile)
{
    std::error_code error;
    // Whatever links lead to the data, there is one lock.
    fs::path file = fs::weakly_canonical(fs::absolute(dataFile), error);
    if (error || fs::is_directory(file, error)) {
        return;
    }
    file += "-lock";
    if (!std::ofstream(file, std::ios::app)) {
        return;
    }
    bool isOurs = false;
    try {
        m_lock = boost::interprocess::file_lock(file.string().c_str());
        isOurs = m_lock.try_lock();
    } catch (const boost::interprocess::interprocess_exception& failure) {
        throw StoreError(StoreFailure::CannotOpen, "cannot lock " + file.u8string() + ": " + failure.what());
    }
    if (!isOurs) {
        throw StoreError(StoreFailure::CannotOpen,
                         "cannot open " + dataFile.u8string() + ": another monitor-service is using it");
    }
}

} // namespace monitorservice
