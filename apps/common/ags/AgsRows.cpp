#include "ags/AgsRows.h"

#include "ags/AgsHeadings.h"
#include "ags/AgsText.h"
#include "reading/TableColumns.h"

#include <QRegularExpression>

#include <utility>

namespace ags {

namespace {

// "Z+01:00" and "Z(+01:00)" are ways to write the offset "+01:00".
QString withPlainOffset(QString time)
{
    static const QRegularExpression offset(QStringLiteral("Z\\(?([+-]\\d\\d:?\\d\\d)\\)?\\z"));
    return time.contains(u'Z') ? time.replace(offset, QStringLiteral("\\1")) : time;
}

} // namespace

ReadingRows::ReadingRows(const QByteArray& text, const Group& readings, const Installations& installations,
                         const FileMapping& mapping, ReadingFields fields)
    : m_text(text), m_readings(readings), m_installations(installations), m_mapping(mapping),
      m_fields(std::move(fields)), m_records(firstRow())
{
    const auto time = m_fields.constFind(MeasuredColumn::Time);
    if (time != m_fields.constEnd()) {
        m_timeUnit = m_readings.units.value(m_readings.headings.indexOf(time->headings().value(0)));
    }
}

csv::RecordReader ReadingRows::firstRow() const
{
    csv::RecordReader records = recordsOf(m_text);
    records.skipLines(m_readings.firstRowLine - 1);
    return records;
}

void ReadingRows::rewind()
{
    m_records = firstRow();
    m_units.clear();
}

bool ReadingRows::next(csv::Record& record)
{
    csv::Record row;
    while (m_readings.firstRowLine > 0 && m_records.next(row) && m_records.position() <= m_readings.end) {
        const bool isIgnored =
            row.problem.isEmpty() && m_mapping.ignored.contains(text(row.fields.mid(1), readingTypeHeading));
        if (!isIgnored) {
            record = readingOf(row);
            return true;
        }
    }
    return false;
}

QString ReadingRows::text(const QStringList& fields, const char* heading) const
{
    return fields.value(m_readings.headings.indexOf(QLatin1String(heading)));
}

csv::Record ReadingRows::readingOf(const csv::Record& row)
{
    csv::Record reading;
    reading.line = row.line;
    reading.isForeign = row.isForeign;
    reading.problem = problemOfData(row, m_readings.headings.size());
    const QStringList fields = row.fields.mid(1);
    if (reading.problem.isEmpty()) {
        reading.problem = problemOf(fields, row.line);
    }
    for (const MeasuredColumn column : measuredColumns) {
        reading.fields.append(fieldOf(column, fields));
    }
    return reading;
}

QString ReadingRows::fieldOf(MeasuredColumn column, const QStringList& fields) const
{
    const auto found = m_fields.constFind(column);
    const QString field = found == m_fields.constEnd() ? QString() : found->of(fields);
    if (column == MeasuredColumn::Time) {
        return withPlainOffset(field);
    }
    const bool isType = column == MeasuredColumn::SubCategory && m_mapping.types.contains(field);
    return isType ? m_mapping.types.value(field).subCategory : field;
}

// What is wrong with a row of the right form, as far as its other groups and rows show it.
QString ReadingRows::problemOf(const QStringList& fields, int line)
{
    QString problem = m_installations.problemOf(
        text(fields, locationHeading), text(fields, installationHeading), text(fields, distanceHeading));
    if (problem.isEmpty()) {
        problem = problemOfTime(fieldOf(MeasuredColumn::Time, fields));
    }
    const QString type = text(fields, readingTypeHeading);
    if (problem.isEmpty() && type.isEmpty()) {
        problem = QStringLiteral("%1 is empty").arg(QLatin1String(readingTypeHeading));
    }
    const bool isReading = !m_mapping.noReading.contains(fieldOf(MeasuredColumn::Value, fields).toLower());
    return problem.isEmpty() && isReading ? problemOfUnit(type, text(fields, readingUnitHeading), line)
                                          : problem;
}

QString ReadingRows::problemOfTime(const QString& time) const
{
    const bool lacksClock = m_timeUnit.contains(QLatin1String("hh")) && !time.contains(u':');
    return lacksClock
               ? QStringLiteral("the time \"%1\" has no clock, though its UNIT is %2").arg(time, m_timeUnit)
               : QString();
}

QString ReadingRows::problemOfUnit(const QString& type, const QString& unit, int line)
{
    const std::optional<QString> said = m_mapping.types.value(type).unit;
    if (said && *said != unit) {
        return QStringLiteral("the unit of %1 is \"%2\" here, and \"%3\" in the mapping")
            .arg(type, unit, *said);
    }
    const auto known = m_units.constFind(type);
    if (known == m_units.constEnd()) {
        m_units.insert(type, {unit, line});
        return QString();
    }
    return known->unit == unit ? QString()
                               : QStringLiteral("the unit of %1 is \"%2\" here, and \"%3\" on line %4")
                                     .arg(type, unit, known->unit)
                                     .arg(known->line);
}

QMultiMap<QString, WrittenUnit> ReadingRows::units() const
{
    QMultiMap<QString, WrittenUnit> units;
    for (auto unit = m_units.cbegin(); unit != m_units.cend(); ++unit) {
        const TypeMapping meaning = m_mapping.types.value(unit.key(), {unit.key(), std::nullopt});
        if (!meaning.unit && !unit->unit.isEmpty()) {
            units.insert(meaning.subCategory, *unit);
        }
    }
    return units;
}

// A file of its own: the other groups as they stand, then that of the readings with the bad ones alone.
BadRows ReadingRows::badRows(const QMap<int, QString>& reasons) const
{
    const QString reason = QLatin1String(badRowReasonTitle);
    BadRows bad;
    bad.above = withoutLineEnds(m_text.left(m_readings.begin)) + lineEnd + lineEnd +
                withoutLineEnds(m_text.mid(m_readings.end)) + lineEnd + lineEnd +
                headText({m_readings.name, m_readings.headings + QStringList{reason},
                          m_readings.units + QStringList{QString()},
                          m_readings.types + QStringList{QStringLiteral("X")}});
    for (const BadRow& row : rowsWithReasons(m_text, firstRow(), reasons)) {
        bad.rows.append(row);
    }
    return bad;
}

} // namespace ags
