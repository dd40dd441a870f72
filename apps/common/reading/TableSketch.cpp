#include "reading/TableSketch.h"

#include "reading/CsvRecords.h"
#include "reading/WrittenTime.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

constexpr int lookedAt = 200; // records

// Records of equal width that go on to the end of what is looked at.
struct Run
{
    char delimiter = ',';
    QVector<csv::Record> records;
};

QVector<csv::Record> firstRecords(const QByteArray& text, char delimiter)
{
    csv::RecordReader reader(text, delimiter);
    QVector<csv::Record> records;
    csv::Record record;
    while (records.size() < lookedAt && reader.next(record)) {
        records.append(record);
    }
    return records;
}

Run runUnder(const QByteArray& text, char delimiter)
{
    Run run;
    run.delimiter = delimiter;
    const QVector<csv::Record> records = firstRecords(text, delimiter);
    if (records.isEmpty() || records.constLast().fields.size() < 2) {
        return run;
    }
    int begin = records.size();
    while (begin > 0 && records[begin - 1].fields.size() == records.constLast().fields.size()) {
        --begin;
    }
    run.records = records.mid(begin);
    return run;
}

// The table of most records has its delimiter right: a wrong one does not part the header as it parts the
// rows.
Run longestRun(const QByteArray& text, std::optional<char> delimiter)
{
    Run longest;
    for (const char candidate : delimiters) {
        if (delimiter && candidate != *delimiter) {
            continue;
        }
        Run run = runUnder(text, candidate);
        const auto width = [](const Run& other) {
            return other.records.isEmpty() ? 0 : other.records.constFirst().fields.size();
        };
        if (run.records.size() > longest.records.size() ||
            (run.records.size() == longest.records.size() && width(run) > width(longest))) {
            longest = run;
        }
    }
    return longest;
}

bool allAre(CellKind kind, const QStringList& cells)
{
    return !cells.isEmpty() && std::all_of(cells.cbegin(), cells.cend(),
                                           [&](const QString& cell) { return kindOf(cell) == kind; });
}

// "0.5 m" as a depth.
bool isDepthTitle(const QString& title)
{
    static const QRegularExpression form(QStringLiteral("\\A\\d+([.,]\\d+)?( ?m)?\\z"));
    return form.match(title).hasMatch();
}

TableLayout layoutUnder(const QStringList& titles)
{
    constexpr int fewest = 3; // with two columns, rows are likelier
    const QStringList rest = titles.mid(1);
    if (titles.size() < fewest || kindOf(titles.first()) != CellKind::Text) {
        return TableLayout::Rows;
    }
    if (allAre(CellKind::Date, rest)) {
        return TableLayout::ColumnPerDate;
    }
    return std::all_of(rest.cbegin(), rest.cend(), isDepthTitle) ? TableLayout::ColumnPerDepth
                                                                 : TableLayout::Rows;
}

bool isRowOfData(const csv::Record& record)
{
    const auto numbers = std::count_if(record.fields.cbegin(), record.fields.cend(),
                                       [](const QString& cell) { return kindOf(cell) == CellKind::Number; });
    return 2 * numbers >= record.fields.size() ||
           std::any_of(record.fields.cbegin(), record.fields.cend(),
                       [](const QString& cell) { return kindOf(cell) == CellKind::Date; });
}

// The record above the rows that holds most known titles; the first one when none holds any.
int headerAmong(const QVector<csv::Record>& records, int firstRow, bool (*isTitle)(const QString&))
{
    int header = firstRow > 0 ? 0 : -1;
    auto most = std::ptrdiff_t(0);
    for (int index = 0; index < firstRow; ++index) {
        const QStringList& cells = records[index].fields;
        const auto known = std::count_if(cells.cbegin(), cells.cend(), isTitle);
        if (known > most) {
            most = known;
            header = index;
        }
    }
    return header;
}

CellKind commonKind(const QVector<csv::Record>& rows, int field)
{
    constexpr std::array<CellKind, 4> kinds{CellKind::Number, CellKind::Date, CellKind::Clock,
                                            CellKind::Text};
    CellKind common = CellKind::Empty;
    int most = 0;
    for (const CellKind kind : kinds) {
        const auto count =
            static_cast<int>(std::count_if(rows.cbegin(), rows.cend(), [&](const csv::Record& row) {
                return kindOf(row.fields.value(field)) == kind;
            }));
        if (count > most) {
            most = count;
            common = kind;
        }
    }
    return common;
}

} // namespace

CellKind kindOf(const QString& cell)
{
    static const QRegularExpression number(QStringLiteral("\\A[+-]?\\d*[.,]?\\d+([eE][+-]?\\d+)?\\z"));
    static const QRegularExpression clock(
        QStringLiteral("\\A\\d{1,2}:\\d{2}(:\\d{2}([.,]\\d+)?)?( ?[AaPp]\\.?[Mm]\\.?)?\\z"));
    if (cell.isEmpty()) {
        return CellKind::Empty;
    }
    if (number.match(cell).hasMatch()) {
        return CellKind::Number;
    }
    if (clock.match(cell).hasMatch()) {
        return CellKind::Clock;
    }
    WrittenTime time;
    const bool isDate = std::any_of(timeFormats.cbegin(), timeFormats.cend(), [&](TimeFormat format) {
        return readWrittenTime(cell, format, u'.', time) == TimeReading::Done;
    });
    return isDate ? CellKind::Date : CellKind::Text;
}

TableSketch sketchTable(const QByteArray& text, std::optional<char> delimiter,
                        bool (*isTitle)(const QString& word))
{
    TableSketch sketch;
    const Run run = longestRun(text, delimiter);
    if (run.records.isEmpty()) {
        return sketch;
    }
    sketch.delimiter = run.delimiter;
    sketch.layout = layoutUnder(run.records.constFirst().fields);
    const bool hasDataInTitles = sketch.layout != TableLayout::Rows;
    const auto row =
        std::find_if(run.records.cbegin() + (hasDataInTitles ? 1 : 0), run.records.cend(), isRowOfData);
    const int firstRow = static_cast<int>(row - run.records.cbegin());
    const int header = hasDataInTitles ? 0 : headerAmong(run.records, firstRow, isTitle);
    const csv::Record& top = run.records[std::max(header, 0)];
    sketch.skippedLines = top.line - 1;
    if (header >= 0) {
        sketch.titles = top.fields;
        sketch.skippedBelowHeader = row == run.records.cend() ? 0 : row->line - top.line - 1;
    }
    const QVector<csv::Record> rows = run.records.mid(firstRow);
    for (int field = 0; field < top.fields.size(); ++field) {
        sketch.kinds.append(commonKind(rows, field));
    }
    return sketch;
}
