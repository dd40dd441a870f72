#include "reading/FileMapping.h"

#include "Failure.h"
#include "FileContent.h"
#include "JsonNode.h"
#include "reading/MeasuredValues.h"

#include <QLocale>

#include <algorithm>

namespace {

constexpr std::array<const char*, measuredColumns.size()> columnTitles{
    "name", "depth", "time", "date", "clock", "count", "value", "timeFlag", "subCategory", "initialValue"};

struct LayoutName
{
    TableLayout layout;
    const char* name;
};

constexpr std::array<LayoutName, 4> layoutNames{{
    {TableLayout::Rows, "rows"},
    {TableLayout::ColumnPerPoint, "column-per-point"},
    {TableLayout::ColumnPerDepth, "column-per-depth"},
    {TableLayout::ColumnPerDate, "column-per-date"},
}};

QStringList columnNames()
{
    QStringList names;
    for (const char* title : columnTitles) {
        names.append(QLatin1String(title));
    }
    return names;
}

ColumnReference referenceOf(const JsonNode& node, const char* member)
{
    ColumnReference reference;
    if (node.value(member).isDouble()) {
        reference.number = node.wholeOr(member, 0);
    } else {
        reference.title = node.text(member).trimmed();
    }
    if (reference.number == 0 && reference.title.isEmpty()) {
        node.failAt(member, QStringLiteral("must be a title, or a number from 1"));
    }
    return reference;
}

QMap<MeasuredColumn, ColumnReference> columnsOf(const JsonNode& node)
{
    node.allowOnly(columnNames());
    QMap<MeasuredColumn, ColumnReference> columns;
    for (const MeasuredColumn column : measuredColumns) {
        const char* title = columnTitles.at(static_cast<std::size_t>(column));
        if (node.has(title)) {
            columns.insert(column, referenceOf(node, title));
        }
    }
    return columns;
}

QMap<MeasuredColumn, QString> constantsOf(const JsonNode& node)
{
    node.allowOnly(columnNames());
    QMap<MeasuredColumn, QString> constants;
    for (const MeasuredColumn column : measuredColumns) {
        const char* title = columnTitles.at(static_cast<std::size_t>(column));
        if (!node.has(title)) {
            continue;
        }
        const QJsonValue value = node.value(title);
        const QString text = value.isDouble()
                                 ? QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest)
                                 : node.text(title).trimmed();
        const QString problem = problemOfConstant(column, text);
        if (!problem.isEmpty()) {
            node.failAt(title, QStringLiteral("cannot be taken: ") + problem);
        }
        constants.insert(column, text);
    }
    return constants;
}

// Titles with the names of their points, or titles alone.
QHash<QString, QString> pointsOf(const JsonNode& root)
{
    QHash<QString, QString> points;
    if (root.value("points").isArray()) {
        for (const QString& title : root.texts("points")) {
            points.insert(title.trimmed(), title.trimmed());
        }
    } else if (root.has("points")) {
        const JsonNode node = root.node("points");
        for (const QString& title : node.members()) {
            points.insert(title.trimmed(), node.text(title.toUtf8().constData()).trimmed());
        }
    }
    return points;
}

// Each type with its sub-category, or with that and its unit.
QMap<QString, TypeMapping> typesOf(const JsonNode& node)
{
    QMap<QString, TypeMapping> types;
    for (const QString& type : node.members()) {
        const QByteArray member = type.toUtf8();
        TypeMapping meaning;
        if (node.value(member.constData()).isObject()) {
            const JsonNode said = node.node(member.constData());
            said.allowOnly({QStringLiteral("subCategory"), QStringLiteral("unit")});
            meaning.subCategory = said.text("subCategory");
            meaning.unit = said.has("unit") ? std::make_optional(said.text("unit")) : std::nullopt;
        } else {
            meaning.subCategory = node.text(member.constData());
        }
        types.insert(type.trimmed(), meaning);
    }
    return types;
}

void readTable(const JsonNode& root, FileMapping& mapping)
{
    if (root.has("layout")) {
        mapping.layout = *tableLayoutNamed(root.oneOf("layout", tableLayoutNames()));
    }
    if (root.has("columns")) {
        mapping.columns = columnsOf(root.node("columns"));
    }
    if (root.has("constants")) {
        mapping.constants = constantsOf(root.node("constants"));
    }
    mapping.points = pointsOf(root);
    mapping.ignored = root.texts("ignore");
    if (root.has("types")) {
        mapping.types = typesOf(root.node("types"));
    }
    for (const QString& word : root.textOrTexts("noReading")) {
        mapping.noReading.insert(word.trimmed().toLower());
    }
}

void readText(const JsonNode& root, FileMapping& mapping)
{
    if (root.has("encoding")) {
        mapping.encoding = encodingNamed(root.oneOf("encoding", encodingNames()));
    }
    if (root.has("delimiter")) {
        const QString name = root.oneOf("delimiter", delimiterNames());
        mapping.delimiter = delimiterNamed(name);
    }
    if (root.has("decimal")) {
        mapping.decimalSign = decimalSignNamed(root.oneOf("decimal", decimalSignNames()));
    }
    mapping.sheet = root.textOr("sheet", QString());
    mapping.skippedLines = root.wholeOr("skipLines", 0);
    mapping.hasHeader = root.flagOr("header", true);
    mapping.skippedBelowHeader = root.wholeOr("skipLinesBelowHeader", 0);
}

void readTimes(const JsonNode& root, FileMapping& mapping)
{
    for (const QString& name : root.textOrTexts("timeFormat")) {
        const std::optional<TimeFormat> format = timeFormatNamed(name);
        if (!format) {
            root.failAt("timeFormat", QStringLiteral("\"%1\" must be one of %2")
                                          .arg(name, timeFormatNames().join(QStringLiteral(", "))));
        }
        mapping.timeFormats.append(*format);
    }
    if (root.has("timeZone")) {
        mapping.zone = zoneNamed(root.text("timeZone"));
        if (!mapping.zone.isValid()) {
            root.failAt("timeZone",
                        QStringLiteral("\"%1\" is not a zone like Europe/Berlin").arg(root.text("timeZone")));
        }
    }
    if (root.has("utcOffset")) {
        mapping.utcOffset = readUtcOffset(root.text("utcOffset"));
        if (!mapping.utcOffset) {
            root.failAt("utcOffset",
                        QStringLiteral("\"%1\" is not an offset like +01:00").arg(root.text("utcOffset")));
        }
    }
    if (root.has("doubledHour")) {
        mapping.doubledHour = doubledHourNamed(root.oneOf("doubledHour", doubledHourNames()));
    }
}

[[noreturn]] void refuse(const QString& reason)
{
    throw Failure(FailureKind::BadInput, reason);
}

bool isNamed(const FileMapping& mapping, MeasuredColumn column)
{
    return mapping.columns.contains(column) || mapping.constants.contains(column);
}

void requireColumnsByNumber(const FileMapping& mapping)
{
    if (mapping.layout != TableLayout::Rows) {
        refuse(QStringLiteral("a table of the layout %1 has a header: its titles are data")
                   .arg(nameOf(mapping.layout)));
    }
    for (const ColumnReference& reference : mapping.columns) {
        if (reference.number == 0) {
            refuse(QStringLiteral("without a header a column is given by its number, not as \"%1\"")
                       .arg(reference.title));
        }
    }
}

} // namespace

QString nameOf(MeasuredColumn column)
{
    return QLatin1String(columnTitles.at(static_cast<std::size_t>(column)));
}

std::optional<MeasuredColumn> measuredColumnNamed(const QString& name)
{
    const auto found =
        std::find_if(measuredColumns.cbegin(), measuredColumns.cend(), [&](MeasuredColumn column) {
            return name.compare(nameOf(column), Qt::CaseInsensitive) == 0;
        });
    return found == measuredColumns.cend() ? std::nullopt : std::make_optional(*found);
}

QString nameOf(TableLayout layout)
{
    return QLatin1String(layoutNames.at(static_cast<std::size_t>(layout)).name);
}

std::optional<TableLayout> tableLayoutNamed(const QString& name)
{
    for (const LayoutName& known : layoutNames) {
        if (name == QLatin1String(known.name)) {
            return known.layout;
        }
    }
    return std::nullopt;
}

QStringList tableLayoutNames()
{
    QStringList names;
    for (const LayoutName& known : layoutNames) {
        names.append(QLatin1String(known.name));
    }
    return names;
}

bool isOfRows(MeasuredColumn column, TableLayout layout)
{
    if (column == MeasuredColumn::SubCategory || column == MeasuredColumn::InitialValue) {
        return layout == TableLayout::Rows;
    }
    switch (layout) {
    case TableLayout::Rows:
        return true;
    case TableLayout::ColumnPerPoint:
        return column != MeasuredColumn::Name && column != MeasuredColumn::Value;
    case TableLayout::ColumnPerDepth:
        return column != MeasuredColumn::Depth && column != MeasuredColumn::Value;
    case TableLayout::ColumnPerDate:
        break;
    }
    return column != MeasuredColumn::Time && column != MeasuredColumn::Date &&
           column != MeasuredColumn::Clock && column != MeasuredColumn::Value;
}

QStringList delimiterNames()
{
    return {QStringLiteral("comma"), QStringLiteral("semicolon"), QStringLiteral("tab")};
}

std::optional<char> delimiterNamed(const QString& name)
{
    const int index = delimiterNames().indexOf(name);
    return index < 0 ? std::nullopt : std::make_optional(delimiters.at(static_cast<std::size_t>(index)));
}

QStringList decimalSignNames()
{
    return {QStringLiteral("point"), QStringLiteral("comma")};
}

std::optional<QChar> decimalSignNamed(const QString& name)
{
    const int index = decimalSignNames().indexOf(name);
    return index < 0 ? std::nullopt : std::make_optional(QChar(index == 0 ? u'.' : u','));
}

QStringList doubledHourNames()
{
    return {QStringLiteral("first"), QStringLiteral("second")};
}

std::optional<DoubledHour> doubledHourNamed(const QString& name)
{
    const int index = doubledHourNames().indexOf(name);
    return index < 0 ? std::nullopt
                     : std::make_optional(index == 0 ? DoubledHour::First : DoubledHour::Second);
}

QTimeZone zoneNamed(const QString& name)
{
    return QTimeZone(name.toUtf8());
}

QString problemOfConstant(MeasuredColumn column, const QString& text)
{
    QString ignoredText;
    qint32 ignoredCount = 0;
    switch (column) {
    case MeasuredColumn::Name:
        return values::readName(text, ignoredText);
    case MeasuredColumn::Depth:
        return values::readDepth(text, u'.', ignoredText);
    case MeasuredColumn::Count:
        return values::readCount(text, ignoredCount);
    case MeasuredColumn::TimeFlag:
        return values::readTimeFlag(text, ignoredText);
    case MeasuredColumn::SubCategory:
    case MeasuredColumn::InitialValue:
        return QStringLiteral("a %1 stands in a column").arg(nameOf(column));
    case MeasuredColumn::Value:
        return QStringLiteral("a value is measured, not constant");
    case MeasuredColumn::Time:
    case MeasuredColumn::Date:
    case MeasuredColumn::Clock:
        break; // whether it is a time is seen with the format of the file
    }
    return QString();
}

void requireConsistent(const FileMapping& mapping)
{
    for (const MeasuredColumn column : measuredColumns) {
        if (mapping.columns.contains(column) && mapping.constants.contains(column)) {
            refuse(QStringLiteral("%1 is given both a column and a constant").arg(nameOf(column)));
        }
    }
    if (isNamed(mapping, MeasuredColumn::Date) != isNamed(mapping, MeasuredColumn::Clock)) {
        refuse(QStringLiteral("date and clock are one time together: give both, or time"));
    }
    if (isNamed(mapping, MeasuredColumn::Date) && isNamed(mapping, MeasuredColumn::Time)) {
        refuse(QStringLiteral("time is given, and date and clock as well"));
    }
    if (mapping.zone.isValid() && mapping.utcOffset) {
        refuse(QStringLiteral("a time zone and an offset from UTC are given: which one holds?"));
    }
    for (const MeasuredColumn column : mapping.columns.keys() + mapping.constants.keys()) {
        if (!isOfRows(column, mapping.layout)) {
            refuse(QStringLiteral(
                       "in the layout %1 no column and no constant is the %2: titles and cells say it")
                       .arg(nameOf(mapping.layout), nameOf(column)));
        }
    }
    if (mapping.layout != TableLayout::ColumnPerPoint && !mapping.points.isEmpty()) {
        refuse(QStringLiteral("points are given by title only in the layout %1")
                   .arg(nameOf(TableLayout::ColumnPerPoint)));
    }
    if (!mapping.hasHeader) {
        requireColumnsByNumber(mapping);
    }
}

FileMapping readFileMapping(const JsonNode& root)
{
    root.allowOnly({QStringLiteral("layout"), QStringLiteral("columns"), QStringLiteral("constants"),
                    QStringLiteral("points"), QStringLiteral("ignore"), QStringLiteral("types"),
                    QStringLiteral("noReading"), QStringLiteral("encoding"), QStringLiteral("delimiter"),
                    QStringLiteral("decimal"), QStringLiteral("sheet"), QStringLiteral("skipLines"),
                    QStringLiteral("header"), QStringLiteral("skipLinesBelowHeader"),
                    QStringLiteral("timeFormat"), QStringLiteral("timeZone"), QStringLiteral("utcOffset"),
                    QStringLiteral("doubledHour")});
    FileMapping mapping;
    mapping.absent = {MeasuredColumn::Depth, MeasuredColumn::Count};
    readTable(root, mapping);
    readText(root, mapping);
    readTimes(root, mapping);
    return mapping;
}

FileMapping readFileMapping(const QString& path, const QByteArray& content)
{
    return readFileMapping(JsonNode::rootOf(path, content));
}

FileMapping readFileMapping(const QString& path)
{
    return readFileMapping(path, contentOfFile(path));
}
