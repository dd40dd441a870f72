#pragma once

#include "store/Store.h"
#include "store/StoreOptions.h"
#include "store/sql/Turns.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace monitorservice {

class PostgresConnection;

/// The store in a PostgreSQL database, version 15 or later, that several services and commands may use at
/// once. A session that reads sees one snapshot; sessions that write what others have claimed wait for them,
/// over all processes. A server that was the primary and comes back after another one has taken its place is
/// not used by those who have used the other one. Connections are kept for the sessions to come, and those
/// that are lost are replaced.
class PostgresStore final : public Store
{
public:
    /// Opens the database at "postgresql://…" (libpq's connection URI) and brings it to the current version.
    /// Throws StoreError with StoreFailure::CannotOpen and a message that names the database, but no
    /// password, when it cannot.
    explicit PostgresStore(std::string url, StoreOptions options = {});
    ~PostgresStore() override;

    using Store::read;
    std::unique_ptr<const Session> read(const Expectations& expected) override;
    using Store::write;
    std::unique_ptr<Session> write(const Claim& claim, const Expectations& expected) override;
    void checkReady() override;

    /// How often the sessions that are over have waited for an answer of the server, since this was asked.
    std::uint64_t takeWaits();

    /// Whether the database has the tables of a store. Throws as the constructor.
    static bool exists(const std::string& url);
    /// The server and the database, without a password.
    static std::string nameOf(const std::string& url);

private:
    class ReadSession;
    class WriteSession;
    struct Turn;

    template <typename Begin>
    std::unique_ptr<PostgresConnection> begin(const Begin& begin);
    Turn takeTurn(std::vector<Lane> lanes, std::chrono::steady_clock::time_point deadline,
                  const Expectations& expected);
    bool wasCommitted(const Turn& turn);
    std::unique_ptr<PostgresConnection> connect();
    std::unique_ptr<PostgresConnection> takeIdle();
    void forgetIdle();
    void giveBack(std::unique_ptr<PostgresConnection> connection);

    std::string m_url;
    StoreOptions m_options;
    Turns m_writing;
    std::mutex m_poolMutex;
    std::vector<std::unique_ptr<PostgresConnection>> m_idle;
    std::uint64_t m_waits = 0;
    std::string m_timeline; ///< the latest that a primary had
};

} // namespace monitorservice
