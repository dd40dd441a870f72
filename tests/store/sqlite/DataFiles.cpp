#include "store/sqlite/DataFiles.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace monitorservice::test {

std::vector<std::string> damageOf(const std::filesystem::path& file)
{
    SQLite::Database database(file.string(), SQLite::OPEN_READWRITE, 5000);
    std::vector<std::string> damage;
    for (const char* const sql :
         {"SELECT 'damage: ' || integrity_check FROM pragma_integrity_check WHERE integrity_check <> 'ok'",
          "SELECT 'dangling reference in ' || \"table\" FROM pragma_foreign_key_check"}) {
        SQLite::Statement query(database, sql);
        while (query.executeStep()) {
            damage.push_back(query.getColumn(0).getString());
        }
    }
    return damage;
}

void makeForeignDatabase(const std::filesystem::path& file)
{
    SQLite::Database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE notes (text)");
}

void setDataVersion(const std::filesystem::path& file, int version)
{
    SQLite::Database(file.string(), SQLite::OPEN_READWRITE)
        .exec("PRAGMA user_version = " + std::to_string(version));
}

} // namespace monitorservice::test
