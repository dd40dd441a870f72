#include "reading/RowReader.h"

#include "PointNames.h"

#include <algorithm>

namespace {

constexpr qint32 onlyCount = 1; // of tables without counts

bool countsTime(TimeFormat format)
{
    return format == TimeFormat::Excel1900 || format == TimeFormat::Excel1904 ||
           format == TimeFormat::UnixSeconds;
}

// Where a reading of a point belongs: its time in milliseconds since 1970, which compares faster than a
// QDateTime, and its count.
struct ReadingSlot
{
    qint64 time;
    qint32 count;
    int index; // among the readings as they were read

    bool isSame(const ReadingSlot& other) const { return time == other.time && count == other.count; }
    bool operator<(const ReadingSlot& other) const
    {
        return time != other.time ? time < other.time : count < other.count;
    }
};

QVector<ReadingSlot> slotsInOrder(const QVector<Reading>& readings)
{
    QVector<ReadingSlot> ordered;
    ordered.reserve(readings.size());
    for (int i = 0; i < readings.size(); ++i) {
        const RKPointLocationData& sample = readings[i].sample;
        ordered.append({sample.time.toMSecsSinceEpoch(), sample.count, i});
    }
    std::stable_sort(ordered.begin(), ordered.end());
    return ordered;
}

SiteClock clockOf(const FileMapping& mapping)
{
    if (mapping.utcOffset) {
        return SiteClock(*mapping.utcOffset);
    }
    return mapping.zone.isValid() ? SiteClock(mapping.zone, mapping.doubledHour) : SiteClock();
}

// "2.5 m" and "2.5m" are depths, too, where a title says one.
QString depthInTitle(QString title)
{
    if (title.endsWith(u'm')) {
        title.chop(1);
    }
    return title.trimmed();
}

} // namespace

RowReader::RowReader(RowSource& rows, const FileMapping& mapping, const TableColumns& columns,
                     MeasuredFile& file)
    : m_rows(rows), m_mapping(mapping), m_columns(columns), m_file(file),
      m_times({TimeFormat::YearMonthDay}, SiteClock(), m_decimalSign)
{
}

void RowReader::read(BadRowKeeping keeping)
{
    m_keepsReasons = keeping == BadRowKeeping::Rows;
    detectFormats();
    if (m_file.problems.isEmpty()) {
        readTitles();
    }
    if (!m_file.problems.isEmpty()) {
        return;
    }
    m_file.isFormatKnown = true;
    csv::Record record;
    for (m_rows.rewind(); m_rows.next(record);) {
        readRow(record);
    }
    for (MeasuredPoint& point : m_file.points) {
        sortReadings(point);
    }
    if (m_keepsReasons) {
        m_file.badRows = m_rows.badRows(m_reasons);
    }
}

QString RowReader::field(const csv::Record& record, MeasuredColumn column) const
{
    const int index = m_columns.field(column);
    return index < 0 ? m_mapping.constants.value(column) : record.fields[index];
}

QString RowReader::timeText(const csv::Record& record) const
{
    if (m_columns.field(MeasuredColumn::Time) >= 0) {
        return record.fields[m_columns.field(MeasuredColumn::Time)];
    }
    const QString time = m_mapping.constants.value(MeasuredColumn::Time);
    return time.isEmpty()
               ? (field(record, MeasuredColumn::Date) + u' ' + field(record, MeasuredColumn::Clock)).trimmed()
               : time;
}

bool RowReader::isNoReading(const QString& text) const
{
    return !m_mapping.noReading.isEmpty() && m_mapping.noReading.contains(text.toLower());
}

bool RowReader::isWhole(const csv::Record& record) const
{
    return record.problem.isEmpty() && record.fields.size() == m_columns.fieldCount;
}

// ---- What the whole file tells of its format
// ----------------------------------------------------------------

void RowReader::detectFormats()
{
    values::DecimalSignDetection signs;
    TimeFormatDetection times(m_mapping.possibleTimeFormats);
    if (!m_mapping.decimalSign || m_mapping.timeFormats.isEmpty()) {
        lookAtTitles(signs, times);
        csv::Record record;
        for (m_rows.rewind(); m_rows.next(record);) {
            if (isWhole(record)) {
                lookAt(record, signs, times);
            }
        }
    }
    const values::DecimalSignDetection::Result sign = signs.result();
    m_decimalSign = m_mapping.decimalSign ? *m_mapping.decimalSign : sign.sign;
    if (!m_mapping.decimalSign && !sign.problem.isEmpty()) {
        m_file.problems.add(sign.line, sign.problem);
        m_file.unclear.decimalSign = true;
    }
    const TimeFormatDetection::Result time = times.result();
    if (m_mapping.timeFormats.isEmpty() && !time.problem.isEmpty()) {
        m_file.problems.add(time.line, time.problem);
        for (const TimeFormat way : time.ways) {
            m_file.unclear.timeFormats.append(nameOf(way));
        }
    }
    m_file.decimalSign = m_decimalSign;
    m_file.timeFormat = time.format;
    m_times =
        TimeReader(m_mapping.timeFormats.isEmpty() ? QList<TimeFormat>{time.format} : m_mapping.timeFormats,
                   clockOf(m_mapping), m_decimalSign);
}

void RowReader::lookAtTitles(values::DecimalSignDetection& signs, TimeFormatDetection& times) const
{
    for (const ValueColumn& column : m_columns.values) {
        if (m_mapping.layout == TableLayout::ColumnPerDepth) {
            signs.look(depthInTitle(column.title), m_columns.line);
        } else if (m_mapping.layout == TableLayout::ColumnPerDate) {
            times.look(column.title, m_columns.line);
        }
    }
}

void RowReader::lookAt(const csv::Record& record, values::DecimalSignDetection& signs,
                       TimeFormatDetection& times) const
{
    if (!m_mapping.decimalSign) {
        for (const ValueColumn& column : m_columns.values) {
            const QString& value = record.fields[column.field];
            if (!isNoReading(value)) {
                signs.look(value, record.line);
            }
        }
        if (m_columns.field(MeasuredColumn::Depth) >= 0) {
            signs.look(record.fields[m_columns.field(MeasuredColumn::Depth)], record.line);
        }
    }
    if (!hasTimesInRows()) {
        return;
    }
    if (m_mapping.timeFormats.isEmpty()) {
        times.look(timeText(record), record.line);
    } else if (std::any_of(m_mapping.timeFormats.cbegin(), m_mapping.timeFormats.cend(), countsTime)) {
        signs.look(timeText(record), record.line);
    }
}

// ---- What titles say of the values below them
// ---------------------------------------------------------------

void RowReader::readTitles()
{
    for (const ValueColumn& column : m_columns.values) {
        Cell cell;
        cell.field = column.field;
        cell.title = column.title;
        const QString problem = readTitle(column, cell);
        if (!problem.isEmpty()) {
            m_file.problems.add(m_columns.line, problem);
        }
        m_cells.append(cell);
    }
}

QString RowReader::readTitle(const ValueColumn& column, Cell& cell)
{
    switch (m_mapping.layout) {
    case TableLayout::Rows:
        break;
    case TableLayout::ColumnPerPoint:
        return values::readName(m_mapping.points.value(column.title, column.title), cell.name);
    case TableLayout::ColumnPerDepth:
        return values::readDepth(depthInTitle(column.title), m_decimalSign, cell.depth);
    case TableLayout::ColumnPerDate:
        return m_times.read(column.title, cell.time, m_file.unclear);
    }
    return QString();
}

// ---- Rows
// ---------------------------------------------------------------------------------------------------

QString RowReader::formProblem(const csv::Record& record) const
{
    if (!record.problem.isEmpty()) {
        return record.problem;
    }
    const int excess = record.fields.size() - m_columns.fieldCount;
    if (excess == 0) {
        return QString();
    }
    const QString counts =
        QStringLiteral("%1 fields, but the %2")
            .arg(record.fields.size())
            .arg(m_mapping.hasHeader ? QStringLiteral("header names %1").arg(m_columns.fieldCount)
                                     : QStringLiteral("first row has %1").arg(m_columns.fieldCount));
    const bool mayBeDecimalComma = excess > 0 && m_columns.delimiter == ',';
    return mayBeDecimalComma
               ? counts + QStringLiteral(": a decimal comma must be quoted where commas separate the fields")
               : counts;
}

void RowReader::readRow(const csv::Record& record)
{
    m_readings.clear();
    QString problem = formProblem(record);
    if (record.isForeign) {
        m_file.holdsForeignBytes = true;
    }
    const bool isInRows = m_mapping.layout == TableLayout::Rows;
    if (problem.isEmpty() && isInRows && isNoReading(record.fields[m_cells.constFirst().field])) {
        ++m_file.withoutReadingCount;
        return;
    }
    RowReading common;
    if (problem.isEmpty()) {
        problem = readCommon(record, common);
    }
    if (problem.isEmpty()) {
        problem = readCells(record, common);
    }
    if (problem.isEmpty()) {
        problem = values::readTimeFlag(field(record, MeasuredColumn::TimeFlag), common.sample.timeFlag);
    }
    if (problem.isEmpty() && isInRows) {
        problem = initialValueProblem(m_readings.constFirst());
    }
    if (!problem.isEmpty()) {
        addProblem(record.line, problem);
        return;
    }
    for (RowReading& reading : m_readings) {
        reading.sample.timeFlag = common.sample.timeFlag;
        pointOf(reading).readings.append({record.line, reading.sample});
        ++m_file.readingCount;
    }
}

// What all values of a row have in common.
QString RowReader::readCommon(const csv::Record& record, RowReading& reading)
{
    QString problem;
    if (m_mapping.layout != TableLayout::ColumnPerPoint) {
        problem = values::readName(field(record, MeasuredColumn::Name), reading.name);
    }
    if (problem.isEmpty() && m_mapping.layout != TableLayout::ColumnPerDepth) {
        const bool isConstant = m_columns.field(MeasuredColumn::Depth) < 0;
        problem = values::readDepth(field(record, MeasuredColumn::Depth),
                                    isConstant ? QChar(u'.') : m_decimalSign, reading.depth);
    }
    if (problem.isEmpty() && hasTimesInRows()) {
        problem = m_times.read(timeText(record), reading.sample.time, m_file.unclear);
    }
    const bool hasCount =
        m_columns.field(MeasuredColumn::Count) >= 0 || m_mapping.constants.contains(MeasuredColumn::Count);
    qint32 count = onlyCount;
    if (problem.isEmpty() && hasCount) {
        problem = values::readCount(field(record, MeasuredColumn::Count), count);
    }
    reading.sample.count = count;
    return problem.isEmpty() ? readMeaning(record, reading) : problem;
}

// What the point measures, and from where, as far as the file says it.
QString RowReader::readMeaning(const csv::Record& record, RowReading& reading)
{
    if (m_columns.field(MeasuredColumn::SubCategory) >= 0) {
        reading.subCategory = field(record, MeasuredColumn::SubCategory);
        if (reading.subCategory.isEmpty()) {
            return QStringLiteral("the sub-category is empty");
        }
    }
    return m_columns.field(MeasuredColumn::InitialValue) < 0
               ? QString()
               : values::readInitialValue(field(record, MeasuredColumn::InitialValue), m_decimalSign,
                                          reading.initialValue);
}

QString RowReader::readCells(const csv::Record& record, const RowReading& common)
{
    int withoutReading = 0;
    for (const Cell& cell : qAsConst(m_cells)) {
        const QString& text = record.fields[cell.field];
        const bool isInRows = m_mapping.layout == TableLayout::Rows;
        if (!isInRows && (text.isEmpty() || isNoReading(text))) {
            ++withoutReading;
            continue;
        }
        RowReading reading = common;
        const QString problem = values::readValue(text, m_decimalSign, reading.sample.value);
        if (!problem.isEmpty()) {
            return isInRows ? problem : QStringLiteral("column \"%1\": %2").arg(cell.title, problem);
        }
        switch (m_mapping.layout) {
        case TableLayout::Rows:
            break;
        case TableLayout::ColumnPerPoint:
            reading.name = cell.name;
            break;
        case TableLayout::ColumnPerDepth:
            reading.depth = cell.depth;
            break;
        case TableLayout::ColumnPerDate:
            reading.sample.time = cell.time;
            break;
        }
        m_readings.append(reading);
    }
    m_file.withoutReadingCount += withoutReading;
    return QString();
}

void RowReader::addProblem(int line, const QString& reason)
{
    m_file.problems.add(line, reason);
    if (m_keepsReasons && !m_reasons.contains(line)) {
        m_reasons.insert(line, reason);
    }
}

// ---- Points
// -------------------------------------------------------------------------------------------------

MeasuredPoint& RowReader::pointOf(const RowReading& reading)
{
    const PointName key(reading.name, {reading.depth, reading.subCategory});
    auto found = m_indexes.find(key);
    if (found == m_indexes.end()) {
        found = m_indexes.insert(key, m_file.points.size());
        MeasuredPoint point;
        point.name = reading.name;
        point.depth = reading.depth;
        point.subCategory = reading.subCategory;
        point.hasInitialValue = m_columns.field(MeasuredColumn::InitialValue) >= 0;
        point.initialValue = reading.initialValue;
        m_file.points.append(point);
    }
    return m_file.points[*found];
}

// A point has one initial value.
QString RowReader::initialValueProblem(const RowReading& reading) const
{
    if (m_columns.field(MeasuredColumn::InitialValue) < 0) {
        return QString();
    }
    const auto found = m_indexes.constFind({reading.name, {reading.depth, reading.subCategory}});
    const bool isSame =
        found == m_indexes.constEnd() || m_file.points[*found].initialValue == reading.initialValue;
    return isSame ? QString()
                  : QStringLiteral("%1 has another initial value in its first row")
                        .arg(pointText(reading.name, reading.depth));
}

void RowReader::reportConflict(const MeasuredPoint& point, const Reading& first, const Reading& second)
{
    addProblem(second.line, QStringLiteral("%1 has another value on line %2 for the same time and count (%3 "
                                           "there, %4 here)")
                                .arg(pointText(point.name, point.depth))
                                .arg(first.line)
                                .arg(first.sample.value)
                                .arg(second.sample.value));
}

void RowReader::sortReadings(MeasuredPoint& point)
{
    const QVector<Reading> read = point.readings;
    point.readings.clear();
    point.readings.reserve(read.size());
    const ReadingSlot* last = nullptr;
    const QVector<ReadingSlot> ordered = slotsInOrder(read);
    for (const ReadingSlot& slot : ordered) {
        const Reading& reading = read[slot.index];
        if (last == nullptr || !last->isSame(slot)) {
            point.readings.append(reading);
            last = &slot;
            continue;
        }
        const RKPointLocationData& first = point.readings.constLast().sample;
        if (first.value != reading.sample.value || first.timeFlag != reading.sample.timeFlag) {
            reportConflict(point, point.readings.constLast(), reading);
        }
        ++m_file.repeatedCount;
        --m_file.readingCount;
    }
}
