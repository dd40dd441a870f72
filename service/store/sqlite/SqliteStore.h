#pragma once

#include "store/Store.h"
#include "store/StoreOptions.h"
#include "store/sql/Turns.h"
#include "store/sqlite/ServiceLock.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace monitorservice {

class SqliteConnection;

/// The store in one SQLite file with its write-ahead log beside it. One connection writes; every session that
/// only reads has a connection of its own from a pool. Several processes may use the file at once, one of
/// them a service. One session writes at a time, whatever it writes.
///
/// What SQL cannot decide it asks the matcher, through functions that SQL calls: a matter of this store
/// alone, as the order of turns and the lock file are.
class SqliteStore final : public Store
{
public:
    /// Opens the file and brings it to the current version. Throws StoreError with StoreFailure::CannotOpen
    /// and a message that names the file when it cannot.
    explicit SqliteStore(std::filesystem::path file, StoreOptions options = {});
    /// Moves the write-ahead log into the file, as far as other processes let it.
    ~SqliteStore() override;

    using Store::read;
    std::unique_ptr<const Session> read(const Expectations& expected) override;
    using Store::write;
    std::unique_ptr<Session> write(const Claim& claim, const Expectations& expected) override;
    void checkReady() override;

private:
    class ReadSession;
    class WriteSession;

    std::unique_ptr<SqliteConnection> takeReader();
    void giveBack(std::unique_ptr<SqliteConnection> reader);

    std::filesystem::path m_file;
    StoreOptions m_options;
    std::optional<ServiceLock> m_lock; ///< a service's own
    Turns m_writing{1};
    std::unique_ptr<SqliteConnection> m_writer;
    std::mutex m_poolMutex;
    std::vector<std::unique_ptr<SqliteConnection>> m_idleReaders;
};

} // namespace monitorservice
