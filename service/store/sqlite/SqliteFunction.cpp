#include "store/sqlite/SqliteFunction.h"

#include <sqlite3.h>

#include <memory>
#include <utility>

namespace monitorservice {

bool SqliteFunction::Arguments::isNull(int index) const
{
    return sqlite3_value_type(m_values[index]) == SQLITE_NULL;
}

std::int64_t SqliteFunction::Arguments::integer(int index) const
{
    return sqlite3_value_int64(m_values[index]);
}

std::string_view SqliteFunction::Arguments::text(int index) const
{
    // A text without characters may come as a null pointer.
    const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(m_values[index]));
    const int bytes = sqlite3_value_bytes(m_values[index]);
    return text == nullptr ? std::string_view() : std::string_view(text, static_cast<std::size_t>(bytes));
}

SqliteFunction::SqliteFunction(SqliteConnection& connection, std::string name, int arguments,
                               Function function)
    : m_connection(connection), m_name(std::move(name)), m_arguments(arguments)
{
    auto state = std::make_unique<State>(State{std::move(function), nullptr});
    m_state = state.get();
    const auto destroy = [](void* data) {
        const std::unique_ptr<State> owned(static_cast<State*>(data));
    };
    // SQLite destroys the state when it takes the function away, and when it cannot register it.
    const int result = sqlite3_create_function_v2(connection.database().getHandle(), m_name.c_str(),
                                                  arguments, SQLITE_UTF8 | SQLITE_DIRECTONLY, state.release(),
                                                  &SqliteFunction::call, nullptr, nullptr, destroy);
    if (result != SQLITE_OK) {
        throw StoreError(StoreFailure::Internal, "cannot register the SQL function " + m_name);
    }
}

SqliteFunction::~SqliteFunction()
{
    sqlite3_create_function_v2(m_connection.database().getHandle(), m_name.c_str(), m_arguments, SQLITE_UTF8,
                               nullptr, nullptr, nullptr, nullptr, nullptr);
}

void SqliteFunction::rethrow()
{
    if (m_state->thrown) {
        std::rethrow_exception(std::exchange(m_state->thrown, nullptr));
    }
}

void SqliteFunction::call(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    State& state = *static_cast<State*>(sqlite3_user_data(context));
    try {
        sqlite3_result_int(context, state.function(Arguments(values)) ? 1 : 0);
    } catch (...) { // no exception may pass through SQLite
        state.thrown = std::current_exception();
        sqlite3_result_error(context, "the condition failed", -1);
    }
}

} // namespace monitorservice
