#pragma once

#include "store/sql/Narrowing.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <simdjson.h>

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What a document holds in a column that its "member" has.
struct ColumnText
{
    bool isUsual = true;
    std::optional<std::string> text; ///< nothing when the member is missing or null
};

inline ColumnText columnText(simdjson::dom::element document, const char* member)
{
    simdjson::dom::element value;
    if (document[member].get(value) != simdjson::SUCCESS || value.is_null()) {
        return {};
    }
    std::string_view text;
    const bool isText = value.get(text) == simdjson::SUCCESS && text.find('\0') == std::string_view::npos;
    return {isText, std::string(text)};
}

/// A database of documents with the columns that narrow() is told of: the texts "name" and "category", the
/// times "createdAt" and "updatedAt".
class NarrowedTable
{
public:
    NarrowedTable()
    {
        m_database.exec(
            "CREATE TABLE documents (id INTEGER PRIMARY KEY, name TEXT, category TEXT, created INTEGER, "
            "updated INTEGER)");
        m_database.exec("CREATE INDEX documents_by_name ON documents (name)");
        m_database.exec("CREATE INDEX documents_by_time ON documents (created)");
        m_insert.emplace(m_database, "INSERT INTO documents VALUES (?, ?, ?, ?, ?)");
    }

    static std::vector<NarrowableField> fields()
    {
        return {{"name", "name"},
                {"category", "category"},
                {"createdAt", "created", FieldKind::Time},
                {"updatedAt", "updated", FieldKind::Time}};
    }

    static Narrowing narrowed(const Where& where) { return narrow(where, fields(), Dialect()); }

    /// Whether the document keeps what narrow() is promised of the columns.
    static bool isUniform(simdjson::dom::element document)
    {
        for (const char* const member : {"name", "category"}) {
            if (!columnText(document, member).isUsual) {
                return false;
            }
        }
        for (const char* const member : {"createdAt", "updatedAt"}) {
            const ColumnText column = columnText(document, member);
            if (!column.isUsual || (column.text && !parseTimestamp(*column.text))) {
                return false;
            }
        }
        return true;
    }

    /// Gives the document's number: they are counted from 0.
    std::size_t insert(simdjson::dom::element document)
    {
        const std::size_t number = m_size++;
        m_insert->reset();
        m_insert->clearBindings();
        m_insert->bind(1, static_cast<std::int64_t>(number));
        int place = 1;
        for (const char* const member : {"name", "category"}) {
            ++place;
            if (const ColumnText column = columnText(document, member); column.text) {
                m_insert->bind(place, *column.text);
            }
        }
        for (const char* const member : {"createdAt", "updatedAt"}) {
            ++place;
            if (const ColumnText column = columnText(document, member); column.text) {
                m_insert->bind(place, parseTimestamp(*column.text).value().milliseconds);
            }
        }
        m_insert->exec();
        return number;
    }

    void clear()
    {
        m_database.exec("DELETE FROM documents");
        m_size = 0;
    }

    std::set<std::size_t> select(const Narrowing& narrowing)
    {
        SQLite::Statement statement(m_database,
                                    "SELECT id FROM documents WHERE " + narrowing.condition.text(Dialect()));
        int place = 0;
        for (const SqlValue& value : narrowing.condition.values()) {
            ++place;
            std::visit([&statement, place](const auto& bound) { statement.bind(place, bound); }, value);
        }
        std::set<std::size_t> numbers;
        while (statement.executeStep()) {
            numbers.insert(static_cast<std::size_t>(statement.getColumn(0).getInt64()));
        }
        return numbers;
    }

private:
    SQLite::Database m_database{":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE};
    std::optional<SQLite::Statement> m_insert;
    std::size_t m_size = 0;
};

/// The member of the document whose text a narrowed column holds.
inline ColumnText textOf(const ColumnPattern& pattern, simdjson::dom::element document)
{
    return columnText(document, pattern.column.c_str());
}

} // namespace monitorservice
