#include "store/sqlite/NewFile.h"

#include "store/StoreError.h"

#ifdef _WIN32
#include <fstream>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <random>
#include <string>
#include <system_error>

namespace monitorservice {

namespace fs = std::filesystem;

namespace {

// Backups of the same name may be made at the same time, and one that was killed leaves its file.
fs::path unpublishedName(const fs::path& name)
{
    std::random_device random;
    return name.u8string() + "-unfinished-" + std::to_string(random());
}

[[noreturn]] void refuse(const fs::path& file, const std::string& what, const std::error_code& error)
{
    const bool isFull = error == std::errc::no_space_on_device;
    throw StoreError(isFull ? StoreFailure::Full : StoreFailure::NotWritable,
                     file.u8string() + " cannot be " + what + ": " + error.message());
}

#ifdef _WIN32

void makePrivately(const fs::path& file, const fs::path& name)
{
    if (!std::ofstream(file, std::ios::app)) {
        refuse(name, "made", std::make_error_code(std::errc::permission_denied));
    }
}

void writeToDisk(const fs::path& /*file*/) {}

#else

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

void makePrivately(const fs::path& file, const fs::path& name)
{
    const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        refuse(name, "made", lastError());
    }
    ::close(descriptor);
}

// A file, or a folder with the names in it.
void writeToDisk(const fs::path& file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isWritten = descriptor >= 0 && ::fsync(descriptor) == 0;
    const std::error_code error = lastError();
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!isWritten) {
        refuse(file, "written to the disk", error);
    }
}

#endif

} // namespace

NewFile::NewFile(const fs::path& name) : m_name(fs::absolute(name)), m_unpublished(unpublishedName(m_name))
{
    requireFreeName();
    makePrivately(m_unpublished, m_name);
}

NewFile::~NewFile()
{
    std::error_code error;
    for (const char* const end : {"", "-wal", "-shm", "-journal"}) {
        fs::remove(m_unpublished.u8string() + end, error);
    }
}

void NewFile::publish()
{
    writeToDisk(m_unpublished);
    requireFreeName();
    std::error_code error;
    fs::rename(m_unpublished, m_name, error);
    if (error) {
        refuse(m_name, "made", error);
    }
    writeToDisk(m_name.parent_path());
}

void NewFile::requireFreeName() const
{
    std::error_code error;
    if (fs::exists(fs::symlink_status(m_name, error))) {
        throw StoreError(StoreFailure::CannotOpen, m_name.u8string() + " exists already");
    }
}

} // namespace monitorservice
