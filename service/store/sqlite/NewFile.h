#pragma once

#include <filesystem>

namespace monitorservice {

/// A file that comes to be under its name when it is whole, or not at all. Until then it lies beside that
/// under a name of its own, readable by its owner alone; it goes with the object unless it was published.
class NewFile
{
public:
    /// Makes the file, empty. Throws StoreError: CannotOpen when there is something of this name, NotWritable
    /// when it cannot be made.
    explicit NewFile(const std::filesystem::path& name);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// Where it lies until it is published.
    const std::filesystem::path& unpublished() const { return m_unpublished; }

    /// Gives it its name. When this returns, file and name survive a loss of power. Throws StoreError like
    /// the constructor.
    void publish();

private:
    void requireFreeName() const;

    std::filesystem::path m_name;
    std::filesystem::path m_unpublished;
};

} // namespace monitorservice
