#include "reading/TableColumns.h"

#include <algorithm>

namespace {

constexpr std::array<MeasuredColumn, 5> askedColumns{MeasuredColumn::Name, MeasuredColumn::Depth,
                                                     MeasuredColumn::Time, MeasuredColumn::Count,
                                                     MeasuredColumn::Value};

bool isSameTitle(const QString& left, const QString& right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

QString alternativesOf(const QStringList& words, const QString& last)
{
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + last + words.last();
}

csv::Record firstRecord(const QByteArray& text, char delimiter, const FileMapping& mapping)
{
    csv::Record record;
    tableOf(text, delimiter, mapping).next(record);
    return record;
}

// Whether the header is searched for the column.
bool isSought(MeasuredColumn column, const FileMapping& mapping)
{
    if (mapping.constants.contains(column) || !isOfRows(column, mapping.layout)) {
        return false;
    }
    if (column == MeasuredColumn::Date || column == MeasuredColumn::Clock) {
        return mapping.columns.contains(column);
    }
    return column != MeasuredColumn::Time || !(mapping.columns.contains(MeasuredColumn::Date) ||
                                               mapping.constants.contains(MeasuredColumn::Date));
}

// The title that the header has for the column; empty where it is given by its number.
QString titleOf(MeasuredColumn column, const FileMapping& mapping)
{
    const auto found = mapping.columns.constFind(column);
    return found == mapping.columns.constEnd() ? nameOf(column) : found->title;
}

bool mayBeAbsent(MeasuredColumn column, const FileMapping& mapping)
{
    const bool isAsked = std::find(askedColumns.cbegin(), askedColumns.cend(), column) != askedColumns.cend();
    const bool isAbsent = mapping.absent.contains(column) ||
                          (mapping.layout != TableLayout::Rows &&
                           (column == MeasuredColumn::Depth || column == MeasuredColumn::Count));
    return !mapping.columns.contains(column) && (!isAsked || isAbsent);
}

int recognisedCount(const QByteArray& text, char delimiter, const FileMapping& mapping)
{
    const csv::Record header = firstRecord(text, delimiter, mapping);
    return static_cast<int>(
        std::count_if(measuredColumns.cbegin(), measuredColumns.cend(), [&](MeasuredColumn column) {
            const QString title = titleOf(column, mapping);
            return isSought(column, mapping) && !title.isEmpty() &&
                   std::any_of(header.fields.cbegin(), header.fields.cend(),
                               [&](const QString& field) { return isSameTitle(field, title); });
        }));
}

// The one delimiter that parts the first line, where no title tells which it is.
char onlyDelimiter(const QByteArray& text, const FileMapping& mapping, Problems& problems,
                   UnclearFormat& unclear)
{
    QList<char> parting;
    for (const char delimiter : delimiters) {
        if (firstRecord(text, delimiter, mapping).fields.size() > 1) {
            parting.append(delimiter);
        }
    }
    if (parting.size() > 1) {
        problems.add(mapping.skippedLines + 1,
                     QStringLiteral("several signs may part the fields of this line: which one does?"));
        unclear.delimiter = true;
    }
    return parting.isEmpty() ? delimiters.front() : parting.first();
}

// The delimiter under which the header names most columns.
char detectedDelimiter(const QByteArray& text, const FileMapping& mapping, Problems& problems,
                       UnclearFormat& unclear)
{
    char best = delimiters.front();
    int most = 0;
    for (const char delimiter : delimiters) {
        const int recognised = mapping.hasHeader ? recognisedCount(text, delimiter, mapping) : 0;
        if (recognised > most) {
            most = recognised;
            best = delimiter;
        }
    }
    const bool namesTell = mapping.hasHeader && mapping.layout == TableLayout::Rows;
    return most > 0 || namesTell ? best : onlyDelimiter(text, mapping, problems, unclear);
}

// Finds the columns in a header.
class HeaderReader
{
public:
    HeaderReader(const csv::Record& header, const FileMapping& mapping, TableColumns& columns,
                 Problems& problems, UnclearFormat& unclear)
        : m_header(header), m_mapping(mapping), m_columns(columns), m_problems(problems), m_unclear(unclear)
    {
    }

    void read()
    {
        for (const MeasuredColumn column : measuredColumns) {
            if (isSought(column, m_mapping)) {
                const int field = fieldOf(column);
                m_columns.fields.at(static_cast<std::size_t>(column)) = field;
                m_isMissing = m_isMissing || (field < 0 && !mayBeAbsent(column, m_mapping));
            }
        }
        if (m_problems.isEmpty() && m_isMissing) {
            reportMissing();
        }
        if (m_mapping.layout == TableLayout::Rows) {
            m_columns.values = {{m_columns.field(MeasuredColumn::Value), QString()}};
        }
        for (int field = 0; m_mapping.hasHeader && field < m_header.fields.size(); ++field) {
            takeRemaining(field);
        }
        if (m_problems.isEmpty()) {
            requirePoints();
        }
    }

private:
    int fieldOf(MeasuredColumn column);
    void takeRemaining(int field);
    void reportMissing();
    void requirePoints();

    const csv::Record& m_header;
    const FileMapping& m_mapping;
    TableColumns& m_columns;
    Problems& m_problems;
    UnclearFormat& m_unclear;
    bool m_isMissing = false;
};

int HeaderReader::fieldOf(MeasuredColumn column)
{
    const auto reference = m_mapping.columns.constFind(column);
    if (reference != m_mapping.columns.constEnd() && reference->number > 0) {
        if (reference->number > m_header.fields.size()) {
            m_problems.add(m_header.line, QStringLiteral("there is no column %1 for %2, only %3")
                                              .arg(reference->number)
                                              .arg(nameOf(column))
                                              .arg(m_header.fields.size()));
        }
        return reference->number - 1;
    }
    if (!m_mapping.hasHeader) {
        return -1;
    }
    const QString title = titleOf(column, m_mapping);
    int found = -1;
    for (int field = 0; field < m_header.fields.size(); ++field) {
        if (!isSameTitle(m_header.fields[field], title)) {
            continue;
        }
        if (found >= 0) {
            m_problems.add(m_header.line,
                           QStringLiteral("duplicate column \"%1\"").arg(m_header.fields[field]));
        }
        found = found < 0 ? field : found;
    }
    return found;
}

// A field that no column has taken holds values, or is ignored.
void HeaderReader::takeRemaining(int field)
{
    const QString& title = m_header.fields[field];
    const bool isTaken =
        std::find(m_columns.fields.cbegin(), m_columns.fields.cend(), field) != m_columns.fields.cend();
    if (isTaken || m_mapping.ignored.contains(title, Qt::CaseInsensitive)) {
        return;
    }
    const bool isData = m_mapping.layout != TableLayout::Rows && !title.isEmpty() &&
                        !isSameTitle(title, QLatin1String(badRowReasonTitle)) &&
                        (m_mapping.points.isEmpty() || m_mapping.points.contains(title));
    if (!isData) {
        m_columns.ignored.append(title);
        return;
    }
    const bool isKnown = std::any_of(m_columns.values.cbegin(), m_columns.values.cend(),
                                     [&](const ValueColumn& value) { return value.title == title; });
    if (isKnown) {
        m_problems.add(m_header.line, QStringLiteral("duplicate column \"%1\"").arg(title));
    }
    m_columns.values.append({field, title});
}

void HeaderReader::reportMissing()
{
    QStringList missing;
    QStringList asked;
    bool areAllOptional = true;
    for (const MeasuredColumn column : measuredColumns) {
        if (!isSought(column, m_mapping) || mayBeAbsent(column, m_mapping)) {
            continue;
        }
        const QString title = titleOf(column, m_mapping);
        asked.append(title.isEmpty() ? nameOf(column) : title);
        if (m_columns.field(column) < 0) {
            missing.append(asked.last());
            areAllOptional = areAllOptional &&
                             (column == MeasuredColumn::Depth || column == MeasuredColumn::Count) &&
                             !m_mapping.columns.contains(column);
        }
    }
    m_unclear.absentColumns = areAllOptional;
    const QString lack = m_mapping.hasHeader
                             ? QStringLiteral("the header names no column \"%1\"; it must name %2")
                             : QStringLiteral("no number is given of the column \"%1\"; known "
                                              "must be those of %2");
    m_problems.add(m_header.line,
                   lack.arg(missing.join(QStringLiteral("\", \"")),
                            alternativesOf(asked, asked.size() > 1 ? QStringLiteral(" and ") : QString())));
}

void HeaderReader::requirePoints()
{
    const auto hasTitle = [&](const QString& title) {
        return std::any_of(m_columns.values.cbegin(), m_columns.values.cend(),
                           [&](const ValueColumn& value) { return value.title == title; });
    };
    QStringList missing = m_mapping.points.keys();
    missing.erase(std::remove_if(missing.begin(), missing.end(), hasTitle), missing.end());
    missing.sort();
    if (!missing.isEmpty()) {
        m_problems.add(
            m_header.line,
            QStringLiteral("the header names no column \"%1\"").arg(missing.join(QStringLiteral("\", \""))));
    } else if (m_columns.values.isEmpty()) {
        m_problems.add(m_header.line, QStringLiteral("the header names no column that holds values"));
    }
}

} // namespace

TableColumns readTableColumns(const QByteArray& text, const FileMapping& mapping, Problems& problems,
                              UnclearFormat& unclear)
{
    TableColumns columns;
    columns.delimiter =
        mapping.delimiter ? *mapping.delimiter : detectedDelimiter(text, mapping, problems, unclear);
    csv::Record header;
    if (!tableOf(text, columns.delimiter, mapping).next(header)) {
        problems = Problems();
        problems.add(1, mapping.hasHeader
                            ? QStringLiteral("the file is empty; its first line must name the columns")
                            : QStringLiteral("the file is empty"));
        return columns;
    }
    columns.line = header.line;
    columns.isHeaderForeign = header.isForeign;
    columns.fieldCount = header.fields.size();
    if (!header.problem.isEmpty()) {
        problems.add(header.line, header.problem);
    }
    HeaderReader(header, mapping, columns, problems, unclear).read();
    return columns;
}

csv::RecordReader tableOf(const QByteArray& text, char delimiter, const FileMapping& mapping)
{
    csv::RecordReader records(text, delimiter);
    records.skipLines(mapping.skippedLines);
    return records;
}

csv::RecordReader rowsOf(const QByteArray& text, char delimiter, const FileMapping& mapping)
{
    csv::RecordReader records = tableOf(text, delimiter, mapping);
    if (mapping.hasHeader) {
        csv::Record header;
        records.next(header);
        records.skipLines(mapping.skippedBelowHeader);
    }
    return records;
}
