#include "store/postgres/StoredColumns.h"

#include "time/Timestamp.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>

namespace monitorservice {

namespace {

using Columns = std::vector<StoredColumn>;

constexpr auto asTime = StoredColumn::Kind::Time;
constexpr auto asNumber = StoredColumn::Kind::Number;

// In the order of DocumentKind.
const std::array<Columns, allDocumentKinds.size()>& allColumns()
{
    static const std::array<Columns, allDocumentKinds.size()> columns{
        Columns{{"name", "name"},
                {"category", "category"},
                {"created_at", "createdAt", asTime},
                {"created_by", "createdBy"},
                {"updated_at", "updatedAt", asTime},
                {"updated_by", "updatedBy"}},
        Columns{{"name", "name"}, {"category", "category"}, {"alias", "alias"}},
        Columns{{"cell", "cellId"}, {"sub_category", "subCategoryId"}, {"name", "groupName"}},
        Columns{{"cell", "cellId"},
                {"sub_category", "subCategoryId"},
                {"name", "name"},
                {"depth", "depth"},
                {"depth_number", "depth", asNumber}},
        Columns{{"cell", "cellId"},
                {"sub_category", "subCategoryId"},
                {"created_at", "createdAt", asTime},
                {"updated_at", "updatedAt", asTime}},
        Columns{{"data_manage", "dataManageId"}},
        Columns{{"cell", "cellId"}, {"sub_category", "subCategoryId"}, {"created_at", "createdAt", asTime}},
        Columns{{"alarm", "alarmManId"}, {"point_name", "pointName"}},
        Columns{{"detail", "detailId"}, {"depth", "depth"}, {"depth_number", "depth", asNumber}},
        Columns{{"category", "category"},
                {"cell", "cellId"},
                {"sub_category", "subCategoryId"},
                {"action", "action"},
                {"subject", "subject"},
                {"created_by", "createdBy"},
                {"created_at", "createdAt", asTime}}};
    return columns;
}

} // namespace

const std::vector<StoredColumn>& storedColumns(DocumentKind kind)
{
    return allColumns().at(static_cast<std::size_t>(kind));
}

void addColumns(PostgresValues& values, const std::vector<StoredColumn>& columns, const std::string& document)
{
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    const bool isJson = parser.parse(document).get(element) == simdjson::SUCCESS;
    for (const StoredColumn& column : columns) {
        std::string_view text;
        std::optional<Timestamp> time;
        const bool isText = isJson && element[column.member].get(text) == simdjson::SUCCESS;
        if (isText && column.kind == StoredColumn::Kind::Time) {
            time = parseTimestamp(text);
        }
        if (!isText || (column.kind == StoredColumn::Kind::Time && !time)) {
            values.add(std::optional<std::int64_t>());
        } else if (column.kind == StoredColumn::Kind::Text) {
            values.add(text);
        } else if (time) {
            values.add(time->milliseconds);
        } else {
            values.add(numberAtBeginOf(text));
        }
    }
}

double numberAtBeginOf(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const std::size_t sign = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
    const std::string_view digits = text.substr(sign);
    // Words such as "inf" are no numbers.
    if (digits.empty() || std::string_view("0123456789.").find(digits.front()) == std::string_view::npos) {
        return 0;
    }
    double value = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        // Too large or too small, which from_chars does not tell: infinity or 0.
        value = std::strtod(std::string(digits.data(), read.ptr).c_str(), nullptr);
    }
    return text.front() == '-' ? -value : value;
}

} // namespace monitorservice
