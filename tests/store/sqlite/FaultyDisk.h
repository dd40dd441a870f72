#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace monitorservice::test {

/// The disk under SQLite, as SQLite's default VFS (https://www.sqlite.org/vfs.html) as long as the object
/// lives. What is written goes to real files; besides, it keeps what a loss of power would leave of them: the
/// bytes that were synced, and of those written since then any part. It can lose power, and refuse to be
/// written.
class FaultyDisk
{
public:
    FaultyDisk();
    ~FaultyDisk();
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;

    /// The files in the folder are on the disk, synced.
    void adopt(const std::filesystem::path& folder);
    /// A disk that says that it has synced and has not.
    void ignoreSyncs();

    /// The power goes with the operation after so many further ones: that may happen in part, all later ones
    /// fail. An operation is a write, a sync, a truncation or a removal.
    void losePowerAfter(std::size_t operations);
    /// The same, but the operation is a sync, and the power goes before or after its work is done.
    void losePowerInSyncAfter(std::size_t operations);
    bool hasPower() const;
    /// Writes what has survived of the files into a folder, which exists.
    void writeSurvivors(const std::filesystem::path& folder, std::mt19937& random) const;

    /// After so many further operations, writes fail with SQLITE_FULL and the log's shared memory does not
    /// grow.
    void fillAfter(std::size_t operations);
    /// After so many further operations, writes, truncations and syncs fail with SQLITE_IOERR.
    void breakAfter(std::size_t operations);
    /// The next sync but so many fails, once. What it should have synced is lost with the power though later
    /// syncs succeed, as on Linux, unless it is written again.
    void failSyncAfter(std::size_t syncs);
    /// Space or the disk is back.
    void repair();

    /// How many operations have failed so far, other than for lack of power.
    std::size_t failures() const;
    std::size_t operations() const;
    /// Bytes that checkpoints and the like have written into the main files.
    std::uint64_t mainBytes() const;

private:
    struct Change
    {
        bool isTruncation = false;
        std::size_t offset = 0; ///< of a truncation the new size
        std::string bytes;
        bool isDropped = false; ///< a sync of it has failed
    };
    /// What one file has on the disk, and what was written since.
    struct Content
    {
        std::string synced;
        std::vector<Change> unsynced;
    };
    using Directory = std::map<std::string, std::shared_ptr<Content>>;
    enum class Operation
    {
        Write,
        Sync,
        Other
    };
    enum class Outcome
    {
        Done,
        InPart, ///< the power has gone
        Impossible
    };
    struct File;
    struct Calls;

    Outcome begin(Operation operation);
    bool isFailing(Operation operation);
    void sync(Content& content);
    static void apply(std::string& bytes, const Change& change);
    static std::string survivorOf(const Content& content, std::mt19937& random);

    sqlite3_vfs* m_real;
    sqlite3_vfs m_vfs{};
    mutable std::mutex m_mutex;
    Directory m_directory;       ///< as the running system sees it
    Directory m_syncedDirectory; ///< as it is found after a loss of power
    bool m_ignoresSyncs = false;
    bool m_hasPower = true;
    bool m_powerEndsInSync = false;
    bool m_isFull = false;
    std::size_t m_operations = 0;
    std::size_t m_powerEnd = SIZE_MAX; ///< numbers of operations
    std::size_t m_failureBegin = SIZE_MAX;
    std::size_t m_goodSyncs = SIZE_MAX;
    std::size_t m_failures = 0;
    std::uint64_t m_mainBytes = 0;
};

} // namespace monitorservice::test
