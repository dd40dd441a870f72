#include "store/sqlite/DataFiles.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>

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

std::vector<std::string> rowsOf(const std::filesystem::path& file)
{
    const SQLite::Database database(file.string());
    std::vector<std::string> tables;
    SQLite::Statement listed(database, "SELECT name FROM sqlite_schema WHERE type = 'table'");
    while (listed.executeStep()) {
        tables.push_back(listed.getColumn(0).getString());
    }
    std::vector<std::string> rows;
    for (const std::string& table : tables) {
        std::string columns;
        SQLite::Statement named(database, "SELECT name FROM pragma_table_xinfo(?) WHERE name <> 'position'");
        named.bind(1, table);
        while (named.executeStep()) {
            const std::string column = named.getColumn(0).getString();
            columns += " || ' ' || quote(";
            columns += column == "point" ? "(SELECT p.id FROM point_locations AS p WHERE p.point = t.point)"
                                         : "t." + column;
            columns += ')';
        }
        SQLite::Statement query(database, "SELECT '" + table + "'" + columns + " FROM " + table + " AS t");
        while (query.executeStep()) {
            rows.push_back(query.getColumn(0).getString());
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
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
