#pragma once

#include "domain/DocumentKind.h"
#include "store/postgres/PostgresValues.h"

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// A column that is written with a document, from one of its members.
struct StoredColumn
{
    enum class Kind
    {
        Text,  ///< the text
        Time,  ///< the Instant of the text
        Number ///< the number that the text begins with, 0 where it begins with none
    };

    std::string name;
    std::string_view member;
    Kind kind = Kind::Text;
};

/// The columns of the documents of a kind.
const std::vector<StoredColumn>& storedColumns(DocumentKind kind);

/// The number that a text begins with; 0 when it begins with none.
double numberAtBeginOf(std::string_view text);

/// Adds what the columns hold for the document: NULL, which none of them may hold, for a member that is
/// missing or something else.
void addColumns(PostgresValues& values, const std::vector<StoredColumn>& columns,
                const std::string& document);

} // namespace monitorservice
