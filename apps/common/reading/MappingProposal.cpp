#include "reading/MappingProposal.h"

#include "Failure.h"
#include "reading/MappingJson.h"
#include "reading/MeasuredFile.h"
#include "reading/TableColumns.h"
#include "reading/TableSketch.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace {

// Words that are titles of a column, in lower case.
struct TitleWords
{
    MeasuredColumn column;
    const char* words;
};

constexpr std::array<TitleWords, 8> titleWords{{
    {MeasuredColumn::Name, "|name|point|point id|point "
                           "name|sensor|station|id|punkt|messpunkt|punktname|sonde|\u6d4b\u70b9|\u70b9\u53f7|"
                           "\u540d\u79f0|\u6d4b\u70b9\u7f16\u53f7|"},
    {MeasuredColumn::Depth, "|depth|tiefe|teufe|\u6df1\u5ea6|"},
    {MeasuredColumn::Time,
     "|time|timestamp|datetime|date time|date/time|date & time|date and time|zeit|zeitstempel|zeitpunkt|"
     "datum/zeit|datum/uhrzeit|\u65f6\u95f4|\u89c2\u6d4b\u65f6\u95f4|\u65e5\u671f\u65f6\u95f4|"},
    {MeasuredColumn::Date, "|date|datum|day|tag|\u65e5\u671f|"},
    {MeasuredColumn::Clock, "|clock|hour|uhrzeit|time of day|"},
    {MeasuredColumn::Count, "|count|record|recnum|nr|no|no.|number|lfd. nr.|\u5e8f\u53f7|\u6b21\u6570|"},
    {MeasuredColumn::Value, "|value|reading|wert|messwert|\u6570\u503c|\u6d4b\u503c|\u89c2\u6d4b\u503c|"},
    {MeasuredColumn::TimeFlag, "|timeflag|flag|"},
}};

// A title without its unit: "Depth [m]", "Value (mm)".
QString withoutUnit(const QString& title)
{
    const int bracket = title.indexOf(u'[') > 0 ? title.indexOf(u'[') : title.indexOf(u'(');
    return (bracket > 0 ? title.left(bracket) : title).trimmed().toLower();
}

std::optional<MeasuredColumn> columnTitled(const QString& title)
{
    const QString word = u'|' + withoutUnit(title) + u'|';
    for (const TitleWords& known : titleWords) {
        if (QString::fromUtf8(known.words).contains(word)) {
            return known.column;
        }
    }
    return std::nullopt;
}

bool isKnownTitle(const QString& word)
{
    return columnTitled(word).has_value();
}

// Cells that say in words that there is no reading.
bool saysNoReading(const QString& cell)
{
    static const QStringList words{
        QStringLiteral("nan"),     QStringLiteral("n/a"),     QStringLiteral("na"),
        QStringLiteral("#n/a"),    QStringLiteral("-"),       QStringLiteral("--"),
        QStringLiteral("---"),     QStringLiteral("dry"),     QStringLiteral("null"),
        QStringLiteral("none"),    QStringLiteral("trocken"), QStringLiteral("inf"),
        QStringLiteral("-1.#ind"), QStringLiteral("\u5e72"),  QStringLiteral("/")};
    return words.contains(cell.toLower());
}

// Works out a mapping for the text of a file.
class Proposer
{
public:
    Proposer(const QString& path, const QByteArray& text, const FileMapping& given)
        : m_path(path), m_text(text), m_mapping(given),
          m_sketch(sketchTable(text, given.delimiter, isKnownTitle))
    {
    }

    MappingProposal propose(const QByteArray& content)
    {
        if (!m_sketch.isTable()) {
            throw Failure(
                FailureKind::BadInput,
                QStringLiteral("%1: no table is recognised: no lines of several fields go on to its end")
                    .arg(m_path));
        }
        proposeTable();
        repeatGiven();
        proposeColumns();
        proposePoints();
        requireName();
        proposeNoReading();
        proposeTimes(content);
        m_proposal.json = QJsonDocument(m_json).toJson();
        return m_proposal;
    }

private:
    void set(const char* member, const QJsonValue& value) { m_json.insert(QLatin1String(member), value); }
    void leaveOpen(const QString& what) { m_proposal.open.append(what); }
    void recognise(const QString& what) { m_proposal.recognised.append(what); }

    void proposeTable();
    void repeatGiven();
    void proposeColumns();
    void proposeColumn(MeasuredColumn column, const QList<int>& fields);
    QList<int> fieldsFor(MeasuredColumn column) const;
    QList<int> fieldsOf(CellKind kind) const;
    void proposePoints();
    void requireName();
    void proposeNoReading();
    void proposeTimes(const QByteArray& content);
    QString shownField(int field) const;

    QString m_path;
    const QByteArray& m_text;
    FileMapping m_mapping;
    TableSketch m_sketch;
    QJsonObject m_json;
    QJsonObject m_columns;
    QList<int> m_taken;
    QList<int> m_valueFields;
    MappingProposal m_proposal;
};

QString Proposer::shownField(int field) const
{
    return m_sketch.titles.isEmpty() ? QStringLiteral("column %1").arg(field + 1)
                                     : QStringLiteral("\"%1\"").arg(m_sketch.titles[field]);
}

void Proposer::proposeTable()
{
    const bool isSheet = !m_mapping.possibleTimeFormats.isEmpty(); // its form is its own
    m_mapping.delimiter = m_sketch.delimiter;
    const auto known = std::find(delimiters.cbegin(), delimiters.cend(), m_sketch.delimiter);
    const QString delimiter = delimiterNames().at(static_cast<int>(known - delimiters.cbegin()));
    if (!isSheet) {
        set("delimiter", delimiter);
        recognise(QStringLiteral("fields separated by %1").arg(delimiter));
    }
    m_mapping.skippedLines = m_sketch.skippedLines;
    if (m_sketch.skippedLines > 0) {
        set("skipLines", m_sketch.skippedLines);
        recognise(QStringLiteral("lines above the table: %1").arg(m_sketch.skippedLines));
    }
    m_mapping.hasHeader = !m_sketch.titles.isEmpty();
    if (!m_mapping.hasHeader) {
        set("header", false);
        recognise(QStringLiteral("no header"));
    }
    m_mapping.skippedBelowHeader = m_sketch.skippedBelowHeader;
    if (m_sketch.skippedBelowHeader > 0) {
        set("skipLinesBelowHeader", m_sketch.skippedBelowHeader);
        recognise(QStringLiteral("lines between header and rows: %1").arg(m_sketch.skippedBelowHeader));
    }
    if (m_mapping.encoding && !isSheet) {
        set("encoding", nameOf(*m_mapping.encoding));
    }
}

// What was given holds for the next file, too.
void Proposer::repeatGiven()
{
    const QJsonObject given = jsonOf(m_mapping);
    for (auto member = given.begin(); member != given.end(); ++member) {
        m_json.insert(member.key(), member.value());
    }
    m_columns = given.value(QLatin1String("columns")).toObject();
    for (const ColumnReference& column : qAsConst(m_mapping.columns)) {
        m_taken.append(column.number > 0 ? column.number - 1 : m_sketch.titles.indexOf(column.title));
    }
}

// Fields whose title names the column, and whose cells can be what it says.
QList<int> Proposer::fieldsFor(MeasuredColumn column) const
{
    QList<int> fields;
    for (int field = 0; field < m_sketch.titles.size(); ++field) {
        std::optional<MeasuredColumn> titled = columnTitled(m_sketch.titles[field]);
        const bool isClock = m_sketch.kinds[field] == CellKind::Clock;
        const bool isDate = m_sketch.kinds[field] == CellKind::Date;
        // "Time" may stand above clocks, and "Date" above whole times.
        if (titled == MeasuredColumn::Time && isClock) {
            titled = MeasuredColumn::Clock;
        } else if (titled == MeasuredColumn::Date && isDate && fieldsOf(CellKind::Clock).isEmpty()) {
            titled = MeasuredColumn::Time;
        }
        if (titled == column) {
            fields.append(field);
        }
    }
    return fields;
}

QList<int> Proposer::fieldsOf(CellKind kind) const
{
    QList<int> fields;
    for (int field = 0; field < m_sketch.kinds.size(); ++field) {
        if (m_sketch.kinds[field] == kind && !m_taken.contains(field)) {
            fields.append(field);
        }
    }
    return fields;
}

void Proposer::proposeColumn(MeasuredColumn column, const QList<int>& fields)
{
    if (fields.size() > 1) {
        QStringList shown;
        std::transform(fields.cbegin(), fields.cend(), std::back_inserter(shown),
                       [&](int field) { return shownField(field); });
        leaveOpen(QStringLiteral("columns.%1: it may be %2")
                      .arg(nameOf(column), shown.join(QStringLiteral(" or "))));
        return;
    }
    if (fields.isEmpty()) {
        return;
    }
    const int field = fields.first();
    m_taken.append(field);
    const ColumnReference reference = m_sketch.titles.isEmpty() ? ColumnReference{QString(), field + 1}
                                                                : ColumnReference{m_sketch.titles[field], 0};
    m_mapping.columns.insert(column, reference);
    m_columns.insert(nameOf(column),
                     m_sketch.titles.isEmpty() ? QJsonValue(field + 1) : QJsonValue(m_sketch.titles[field]));
    recognise(QStringLiteral("%1 is %2").arg(nameOf(column), shownField(field)));
}

void Proposer::proposeColumns()
{
    for (const MeasuredColumn column : measuredColumns) {
        const bool isGiven = m_mapping.columns.contains(column) || m_mapping.constants.contains(column);
        if (isOfRows(column, m_sketch.layout) && !isGiven) {
            proposeColumn(column, fieldsFor(column));
        }
    }
    const bool hasTime = m_columns.contains(nameOf(MeasuredColumn::Time)) ||
                         m_columns.contains(nameOf(MeasuredColumn::Date)) ||
                         m_sketch.layout == TableLayout::ColumnPerDate;
    if (!hasTime) {
        const QList<int> dates = fieldsOf(CellKind::Date);
        const QList<int> clocks = fieldsOf(CellKind::Clock);
        proposeColumn(clocks.size() == 1 ? MeasuredColumn::Date : MeasuredColumn::Time, dates);
        proposeColumn(MeasuredColumn::Clock, clocks);
        if (dates.isEmpty()) {
            leaveOpen(QStringLiteral("columns.time: no column of times is recognised"));
        }
    } else if (m_sketch.layout == TableLayout::ColumnPerDate &&
               !m_columns.contains(nameOf(MeasuredColumn::Depth)) &&
               !m_columns.contains(nameOf(MeasuredColumn::Name))) {
        leaveOpen(QStringLiteral("columns.depth or columns.name: it may be either that %1 holds")
                      .arg(shownField(0)));
    }
    if (!m_columns.isEmpty()) {
        set("columns", m_columns);
    }
}

// Where no column holds names, further columns of numbers may be points.
void Proposer::proposePoints()
{
    const bool hasValue = m_columns.contains(nameOf(MeasuredColumn::Value));
    if (m_sketch.layout == TableLayout::Rows && !hasValue) {
        m_valueFields = fieldsOf(CellKind::Number);
        const bool hasName = m_columns.contains(nameOf(MeasuredColumn::Name));
        if (hasName || m_sketch.titles.isEmpty() || m_valueFields.isEmpty()) {
            proposeColumn(MeasuredColumn::Value, m_valueFields);
            set("columns", m_columns);
        } else {
            m_sketch.layout = TableLayout::ColumnPerPoint;
        }
    }
    const bool areWholeNumbers =
        m_sketch.layout == TableLayout::ColumnPerDepth &&
        std::all_of(m_sketch.titles.cbegin() + 1, m_sketch.titles.cend(), [](const QString& title) {
            bool isWhole = false;
            title.toInt(&isWhole);
            return isWhole;
        });
    if (areWholeNumbers) {
        leaveOpen(QStringLiteral("layout: the titles may be depths (%1) or points (%2)")
                      .arg(nameOf(TableLayout::ColumnPerDepth), nameOf(TableLayout::ColumnPerPoint)));
        return;
    }
    m_mapping.layout = m_sketch.layout;
    set("layout", nameOf(m_sketch.layout));
    recognise(QStringLiteral("layout %1").arg(nameOf(m_sketch.layout)));
    if (m_sketch.layout == TableLayout::ColumnPerPoint) {
        QJsonArray points;
        for (const int field : qAsConst(m_valueFields)) {
            points.append(m_sketch.titles[field]);
            m_mapping.points.insert(m_sketch.titles[field], m_sketch.titles[field]);
            recognise(QStringLiteral("the point %1").arg(shownField(field)));
        }
        set("points", points);
    }
}

void Proposer::requireName()
{
    if (isOfRows(MeasuredColumn::Name, m_mapping.layout) &&
        !m_mapping.columns.contains(MeasuredColumn::Name) &&
        !m_mapping.constants.contains(MeasuredColumn::Name)) {
        leaveOpen(QStringLiteral("constants.name: no column holds the name of a point"));
    }
}

void Proposer::proposeNoReading()
{
    QStringList words(m_mapping.noReading.cbegin(), m_mapping.noReading.cend());
    csv::Record record;
    for (csv::RecordReader rows = rowsOf(m_text, m_sketch.delimiter, m_mapping); rows.next(record);) {
        for (int field = 0; field < record.fields.size(); ++field) {
            const QString word = record.fields[field].toLower();
            if (m_sketch.kinds.value(field) == CellKind::Number && saysNoReading(word) &&
                !words.contains(word)) {
                words.append(word);
            }
        }
    }
    if (!words.isEmpty()) {
        set("noReading", QJsonArray::fromStringList(words));
        m_mapping.noReading = QSet<QString>(words.cbegin(), words.cend());
        recognise(QStringLiteral("no reading where a cell is %1").arg(words.join(QStringLiteral(", "))));
    }
}

// Reads the file as it is proposed, and sees what that takes.
void Proposer::proposeTimes(const QByteArray& content)
{
    m_mapping.absent = {MeasuredColumn::Depth, MeasuredColumn::Count};
    if (isOfRows(MeasuredColumn::Name, m_mapping.layout) &&
        !m_mapping.columns.contains(MeasuredColumn::Name)) {
        m_mapping.constants.insert(MeasuredColumn::Name, QStringLiteral("P"));
    }
    const MeasuredFile file = readMeasuredFile(m_path, content, m_mapping);
    if (!file.unclear.timeFormats.isEmpty()) {
        leaveOpen(QStringLiteral("timeFormat: the times may be %1")
                      .arg(file.unclear.timeFormats.join(QStringLiteral(" or "))));
    } else if (!m_mapping.timeFormats.isEmpty()) {
        QJsonArray formats;
        for (const TimeFormat format : qAsConst(m_mapping.timeFormats)) {
            formats.append(nameOf(format));
        }
        set("timeFormat", formats);
    } else if (file.isFormatKnown) {
        set("timeFormat", nameOf(file.timeFormat));
        recognise(QStringLiteral("times are %1").arg(nameOf(file.timeFormat)));
    }
    if (file.unclear.decimalSign) {
        leaveOpen(QStringLiteral("decimal: the comma may be the decimal sign or separate thousands"));
    } else if (file.isFormatKnown && file.decimalSign == u',') {
        set("decimal", QStringLiteral("comma"));
        recognise(QStringLiteral("decimal commas"));
    }
    if (file.unclear.utcOffset) {
        leaveOpen(QStringLiteral("timeZone or utcOffset: the times name no offset from UTC"));
    }
}

} // namespace

MappingProposal proposeMapping(const QString& path, const QByteArray& content, const FileMapping& given)
{
    const FileText text = readFileText(content, given.encoding);
    const QStringList readable = encodingsThatRead(content);
    const bool isText = text.problem.isEmpty() && (text.encoding != FileEncoding::Utf8 ||
                                                   readable.contains(nameOf(FileEncoding::Utf8)));
    if (!isText) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: the text is not %2; it can be read as %3")
                          .arg(path, nameOf(text.encoding).toUpper(), readable.join(QStringLiteral(", "))));
    }
    return Proposer(path, text.utf8, given).propose(content);
}
