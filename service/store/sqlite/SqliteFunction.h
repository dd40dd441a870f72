#pragma once

#include "store/sqlite/SqliteConnection.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>

struct sqlite3_value;

namespace monitorservice {

/// A condition that statements of one connection can use under a name and that is computed here, as long as
/// the object lives. There is one of a name at a time.
class SqliteFunction
{
public:
    /// What a statement calls it with.
    class Arguments
    {
    public:
        explicit Arguments(sqlite3_value** values) : m_values(values) {}

        bool isNull(int index) const;
        std::int64_t integer(int index) const;
        /// Valid until the function returns.
        std::string_view text(int index) const;

    private:
        sqlite3_value** m_values;
    };
    using Function = std::function<bool(const Arguments& arguments)>;

    /// What the function throws ends the statement, see guarded().
    SqliteFunction(SqliteConnection& connection, std::string name, int arguments, Function function);
    ~SqliteFunction();
    SqliteFunction(const SqliteFunction&) = delete;
    SqliteFunction& operator=(const SqliteFunction&) = delete;

    /// Throws what the function threw since the last call, if it did.
    void rethrow();

private:
    struct State
    {
        Function function;
        std::exception_ptr thrown;
    };

    static void call(sqlite3_context* context, int count, sqlite3_value** values);

    SqliteConnection& m_connection;
    std::string m_name;
    int m_arguments;
    State* m_state; ///< SQLite's own, until the function is taken away
};

} // namespace monitorservice
