#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace monitorservice::test {

/// An empty folder that is gone, with all in it, when the object is.
class TemporaryFolder
{
public:
    TemporaryFolder()
        : m_path(std::filesystem::temp_directory_path() / ("monitor-service-test-" + randomName()))
    {
        std::filesystem::create_directories(m_path);
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path file(const std::string& name) const { return m_path / name; }
    const std::filesystem::path& path() const { return m_path; }

private:
    static std::string randomName()
    {
        std::random_device device;
        return std::to_string(device()) + std::to_string(device());
    }

    std::filesystem::path m_path;
};

} // namespace monitorservice::test
