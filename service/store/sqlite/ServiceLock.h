#pragma once

#include <boost/interprocess/sync/file_lock.hpp>

#include <filesystem>

namespace monitorservice {

/// Keeps a second service from using the same data file as long as the object lives, however the process
/// ends. Locks an empty file beside it, FILE-lock, which stays: SQLite's own locks are lost when somebody
/// else in the process closes the data file. Commands of administration do not ask for it.
class ServiceLock
{
public:
    /// Throws StoreError with StoreFailure::CannotOpen when another service has it. Where the lock cannot be
    /// had at all, in a folder that is missing or may only be read, nothing is said: the store cannot be
    /// opened there either, and knows why.
    explicit ServiceLock(const std::filesystem::path& dataFile);

private:
    boost::interprocess::file_lock m_lock;
};

} // namespace monitorservice
