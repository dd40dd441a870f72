#include "ags/AgsDefinitions.h"

#include "ags/AgsGroups.h"
#include "ags/AgsHeadings.h"

#include <algorithm>
#include <array>

namespace ags {

namespace {

// A code of the format and what it means.
struct Meaning
{
    const char* code;
    const char* description;
};

constexpr const char* dayUnit = "yyyy-mm-dd";

constexpr std::array<Meaning, 3> unitMeanings{
    {{distanceUnit, "metre"}, {dayUnit, "day"}, {timeUnit, "time with its offset from UTC"}}};

constexpr std::array<Meaning, 8> typeMeanings{{{"ID", "Unique identifier"},
                                               {"PA", "Text listed in ABBR"},
                                               {"PT", "Text listed in TYPE"},
                                               {"PU", "Text listed in UNIT"},
                                               {"X", "Text"},
                                               {"XN", "Text or number"},
                                               {"U", "Number of any form"},
                                               {"DT", "Date and time"}}};

constexpr const char* headingKind = "HEADING";
constexpr const char* optionalStatus = "OTHER";

template <std::size_t size>
QString meaningOf(const std::array<Meaning, size>& meanings, const QString& code, const QString& otherwise)
{
    const auto found = std::find_if(meanings.cbegin(), meanings.cend(), [&](const Meaning& meaning) {
        return code == QLatin1String(meaning.code);
    });
    return found == meanings.cend() ? otherwise : QLatin1String(found->description);
}

QStringList texts(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list) {
        result.append(QLatin1String(text));
    }
    return result;
}

// A table whose fields have no unit.
Table plainTable(const char* group, const QStringList& headings, const QStringList& types)
{
    QStringList none;
    for (int i = 0; i < headings.size(); ++i) {
        none.append(QString());
    }
    return {{QLatin1String(group), headings, none, types}, {}};
}

QStringList sorted(QStringList list)
{
    list.removeAll(QString());
    list.removeDuplicates();
    list.sort();
    return list;
}

Table unitTable(const QStringList& units)
{
    Table table = plainTable("UNIT", texts({"UNIT_UNIT", "UNIT_DESC"}), texts({"X", "X"}));
    for (const QString& unit : sorted(units)) {
        table.rows.append({unit, meaningOf(unitMeanings, unit, unit)});
    }
    return table;
}

Table typeTable(const QStringList& types)
{
    Table table = plainTable("TYPE", texts({"TYPE_TYPE", "TYPE_DESC"}), texts({"X", "X"}));
    for (const QString& type : sorted(types)) {
        const QString decimals = QStringLiteral("Number with decimals: %1").arg(type.chopped(2));
        table.rows.append({type, meaningOf(typeMeanings, type, decimals)});
    }
    return table;
}

Table abbreviationTable(QList<Abbreviation> abbreviations)
{
    abbreviations.append(
        {QStringLiteral("DICT_TYPE"), QLatin1String(headingKind), QStringLiteral("A heading")});
    abbreviations.append(
        {QStringLiteral("DICT_STAT"), QLatin1String(optionalStatus), QStringLiteral("Need not be there")});
    Table table = plainTable("ABBR", texts({"ABBR_HDNG", "ABBR_CODE", "ABBR_DESC"}), texts({"X", "X", "X"}));
    for (const Abbreviation& abbreviation : qAsConst(abbreviations)) {
        table.rows.append({abbreviation.heading, abbreviation.code, abbreviation.description});
    }
    return table;
}

Table dictionaryTable()
{
    Table table = plainTable(
        dictionaryGroup,
        texts({"DICT_TYPE", "DICT_GRP", "DICT_HDNG", "DICT_STAT", "DICT_DTYP", "DICT_DESC", "DICT_UNIT"}),
        texts({"PA", "X", "X", "PA", "PT", "X", "PU"}));
    for (const OwnHeading& own : ownHeadings) {
        table.rows.append(
            texts({headingKind, readingGroup, own.name, optionalStatus, own.type, own.description, ""}));
    }
    return table;
}

} // namespace

QByteArray tableText(const Table& table)
{
    QByteArray rows = headText(table.head);
    for (const QStringList& row : table.rows) {
        rows += rowText(QLatin1String(dataDescriptor), row);
    }
    return rows;
}

Table transmissionTable(const Transmission& transmission, const QList<Abbreviation>& abbreviations)
{
    const QString joiners = QStringLiteral("+&;^~");
    const auto joiner = std::find_if(joiners.cbegin(), joiners.cend(), [&](QChar character) {
        return std::none_of(
            abbreviations.cbegin(), abbreviations.cend(),
            [&](const Abbreviation& abbreviation) { return abbreviation.code.contains(character); });
    });
    Table table = plainTable("TRAN",
                             texts({"TRAN_ISNO", "TRAN_DATE", "TRAN_PROD", "TRAN_STAT", "TRAN_DESC",
                                    "TRAN_AGS", "TRAN_RECV", "TRAN_DLIM", "TRAN_RCON"}),
                             texts({"X", "DT", "X", "X", "X", "X", "X", "X", "X"}));
    table.head.units[1] = QLatin1String(dayUnit);
    table.rows.append({QStringLiteral("1"), transmission.day.toString(Qt::ISODate), transmission.producer,
                       QStringLiteral("Export"),
                       QStringLiteral("Readings of %1").arg(transmission.monitoring), transmission.edition,
                       transmission.project, QStringLiteral("|"),
                       joiner == joiners.cend() ? QChar(u'+') : *joiner});
    return table;
}

QList<Table> definitionTables(const QList<Table>& tables, const Head& readings, const QStringList& units,
                              const QList<Abbreviation>& abbreviations)
{
    QList<Table> definitions{abbreviationTable(abbreviations), dictionaryTable()};
    QStringList allUnits = units + readings.units;
    QStringList allTypes = readings.types;
    for (const Table& table : tables + definitions) {
        allUnits += table.head.units;
        allTypes += table.head.types;
    }
    return QList<Table>{unitTable(allUnits), typeTable(allTypes)} + definitions;
}

} // namespace ags
