#pragma once

#include "store/StoreError.h"
#include "store/sql/Sql.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace monitorservice {

class SqliteConnection;

constexpr Dialect sqliteDialect{};

/// A prepared statement in use; goes back to its connection, reset, when destroyed. Every member throws
/// StoreError.
class SqliteStatement
{
public:
    SqliteStatement(SqliteConnection& connection, std::unique_ptr<SQLite::Statement> statement);
    SqliteStatement(SqliteStatement&&) noexcept = default;
    SqliteStatement& operator=(SqliteStatement&&) = delete;
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    ~SqliteStatement();

    /// Binds the values to the placeholders in their order, going on where the last call ended.
    template <typename... Values>
    SqliteStatement& bind(const Values&... values)
    {
        (bindNext(values), ...);
        return *this;
    }
    void bindNext(std::int64_t value);
    void bindNext(double value);
    void bindNext(const std::string& value);
    void bindNext(const std::optional<std::int64_t>& value);
    void bindNext(const std::optional<std::string>& value);
    /// Bytes that are not text.
    void bindBlob(std::string_view bytes);

    /// Goes to the next row; false when there is none.
    bool step();
    /// Runs a statement that gives no rows; the number of rows it changed.
    int run();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string text(int column) const;
    /// Valid until the next step.
    std::string_view view(int column) const;
    std::optional<std::int64_t> optionalInteger(int column) const;
    std::optional<std::string> optionalText(int column) const;

private:
    SqliteConnection* m_connection;
    std::unique_ptr<SQLite::Statement> m_statement;
    int m_bound = 0;
};

/// One connection to a file, for one thread at a time.
class SqliteConnection
{
public:
    enum class Access
    {
        Read,
        Write
    };

    /// Throws StoreError with StoreFailure::CannotOpen.
    SqliteConnection(const std::filesystem::path& file, Access access, std::chrono::milliseconds patience);

    /// A statement of this text, prepared once and kept for the next use.
    SqliteStatement statement(std::string_view sql);
    /// The same of a piece of SQL, with its values bound.
    SqliteStatement bound(const Sql& sql);
    /// Calls a visitor. Statements are refused until it returns, as every store may refuse them then.
    template <typename Visitor, typename... Found>
    auto show(const Visitor& visitor, const Found&... found)
    {
        const Showing showing(*this);
        return visitor(found...);
    }
    /// Runs statements that take and give nothing.
    void execute(const std::string& sql);
    /// The first value of the first row.
    std::int64_t integer(const std::string& sql);

    SQLite::Database& database() { return m_database; }

private:
    friend class SqliteStatement;

    class Showing
    {
    public:
        explicit Showing(SqliteConnection& connection) : m_connection(connection)
        {
            m_connection.m_isShowing = true;
        }
        ~Showing() { m_connection.m_isShowing = false; }
        Showing(const Showing&) = delete;
        Showing& operator=(const Showing&) = delete;

    private:
        SqliteConnection& m_connection;
    };

    void keep(std::unique_ptr<SQLite::Statement> statement);

    bool m_isShowing = false;
    SQLite::Database m_database;
    // Found by their text, which each statement itself holds.
    std::unordered_map<std::string_view, std::unique_ptr<SQLite::Statement>> m_idle;
};

/// The failure that an error of SQLite stands for.
StoreError storeError(const SQLite::Exception& error);

} // namespace monitorservice
