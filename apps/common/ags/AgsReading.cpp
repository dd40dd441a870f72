#include "ags/AgsReading.h"

#include "Failure.h"
#include "ags/AgsGroups.h"
#include "ags/AgsHeadings.h"
#include "ags/AgsInstallations.h"
#include "ags/AgsRows.h"
#include "reading/RowReader.h"

#include <algorithm>
#include <array>

namespace ags {

namespace {

constexpr std::array<const char*, 5> noReadingWords{"", "dry", "n/a", "nr", "no reading"};

void requireNothingOfTables(const QString& path, const FileMapping& mapping)
{
    const bool isOfTable = mapping.layout != TableLayout::Rows || !mapping.hasHeader ||
                           mapping.skippedLines > 0 || mapping.skippedBelowHeader > 0 ||
                           mapping.delimiter.value_or(',') != ',';
    const bool hasNumbers = std::any_of(mapping.columns.cbegin(), mapping.columns.cend(),
                                        [](const ColumnReference& column) { return column.number > 0; });
    if (isOfTable || hasNumbers) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("%1 is an AGS file, whose form is known: it has headings, and no layout, "
                           "delimiter, lines to skip or columns by number")
                .arg(path));
    }
}

// How times are written under a UNIT such as yyyy-mm-ddThh:mm; nothing when it does not tell.
std::optional<TimeFormat> timeFormatOf(const QString& unit)
{
    const bool isDate = unit.contains(u'y') && unit.contains(u'm') && unit.contains(u'd');
    if (!isDate) {
        return std::nullopt;
    }
    switch (unit[0].toLatin1()) {
    case 'y':
        return TimeFormat::YearMonthDay;
    case 'd':
        return TimeFormat::DayMonthYear;
    case 'm':
        return TimeFormat::MonthDayYear;
    default:
        return std::nullopt;
    }
}

FileMapping completed(FileMapping mapping, const Group& readings)
{
    if (!mapping.decimalSign) {
        mapping.decimalSign = u'.';
    }
    const std::optional<TimeFormat> format =
        timeFormatOf(readings.units.value(readings.headings.indexOf(QLatin1String(timeHeading))));
    if (mapping.timeFormats.isEmpty() && format) {
        mapping.timeFormats = {*format};
    }
    mapping.possibleTimeFormats = {TimeFormat::YearMonthDay, TimeFormat::DayMonthYear,
                                   TimeFormat::MonthDayYear};
    for (const char* word : noReadingWords) {
        mapping.noReading.insert(QLatin1String(word));
    }
    return mapping;
}

bool declares(const Groups& groups, const OwnHeading& heading)
{
    const Group* dictionary = groups.find(QLatin1String(dictionaryGroup));
    return dictionary != nullptr &&
           std::any_of(dictionary->rows.cbegin(), dictionary->rows.cend(), [&](const Row& row) {
               const auto text = [&](const char* name) {
                   return dictionary->text(row, QLatin1String(name));
               };
               return text("DICT_GRP") == QLatin1String(readingGroup) &&
                      text("DICT_HDNG") == QLatin1String(heading.name) &&
                      text("DICT_DESC") == QLatin1String(heading.description);
           });
}

// Finds what makes the columns of the readings.
class FieldFinder
{
public:
    FieldFinder(const Groups& groups, const Group& readings, const FileMapping& mapping, MeasuredFile& file)
        : m_groups(groups), m_readings(readings), m_mapping(mapping), m_file(file)
    {
    }

    ReadingFields find(const Installations& installations)
    {
        for (const char* heading : {locationHeading, installationHeading, distanceHeading, timeHeading,
                                    readingTypeHeading, readingHeading, readingUnitHeading}) {
            if (!m_readings.has(QLatin1String(heading))) {
                problem(QStringLiteral("the group %1 has no heading %2")
                            .arg(m_readings.name, QLatin1String(heading)));
            }
        }
        addUnlessSaid(MeasuredColumn::Depth, distanceHeading);
        addUnlessSaid(MeasuredColumn::Value, readingHeading);
        addUnlessSaid(MeasuredColumn::SubCategory, readingTypeHeading);
        if (!isSaid(MeasuredColumn::Date)) {
            addUnlessSaid(MeasuredColumn::Time, timeHeading);
        }
        addOwn(MeasuredColumn::Count, countHeading);
        addOwn(MeasuredColumn::TimeFlag, timeFlagHeading);
        addOwn(MeasuredColumn::InitialValue, initialValueHeading);
        for (auto column = m_mapping.columns.cbegin(); column != m_mapping.columns.cend(); ++column) {
            add(column.key(), column->title);
        }
        addName(installations);
        tellIgnored();
        return m_fields;
    }

private:
    void problem(const QString& reason) { m_file.problems.add(m_readings.headingLine, reason); }

    bool isSaid(MeasuredColumn column) const
    {
        return m_mapping.columns.contains(column) || m_mapping.constants.contains(column);
    }

    void add(MeasuredColumn column, const QString& text)
    {
        const Field field(text, m_readings.headings);
        m_fields.insert(column, field);
        for (const QString& heading : field.unknown()) {
            problem(QStringLiteral("%1 is to be under \"%2\", which is no heading of the group %3")
                        .arg(nameOf(column), heading, m_readings.name));
        }
    }

    void addUnlessSaid(MeasuredColumn column, const char* heading)
    {
        const QString name = QLatin1String(heading);
        if (!isSaid(column) && m_readings.has(name)) {
            add(column, name);
        }
    }

    void addOwn(MeasuredColumn column, const OwnHeading& heading)
    {
        if (declares(m_groups, heading)) {
            addUnlessSaid(column, heading.name);
        }
    }

    // A location is a point, unless it is several.
    void addName(const Installations& installations)
    {
        if (isSaid(MeasuredColumn::Name)) {
            return;
        }
        const auto several = installations.several();
        if (!several) {
            addUnlessSaid(MeasuredColumn::Name, locationHeading);
            return;
        }
        problem(
            QStringLiteral("the location \"%1\" has several installations (\"%2\"): how are points named?")
                .arg(several->location, several->installations.join(QStringLiteral("\", \""))));
        const QString location = QLatin1String(locationHeading);
        const QString installation = QLatin1String(installationHeading);
        m_file.unclear.names = QStringList{location + u'/' + installation, installation, location};
    }

    // Headings that others declare; those of the format need no mention.
    void tellIgnored()
    {
        QStringList known{QLatin1String(locationHeading),    QLatin1String(installationHeading),
                          QLatin1String(distanceHeading),    QLatin1String(timeHeading),
                          QLatin1String(readingTypeHeading), QLatin1String(referenceHeading),
                          QLatin1String(readingHeading),     QLatin1String(readingUnitHeading),
                          QLatin1String(badRowReasonTitle)};
        for (const char* heading : otherReadingHeadings) {
            known.append(QLatin1String(heading));
        }
        for (const Field& field : qAsConst(m_fields)) {
            known.append(field.headings());
        }
        for (const QString& heading : m_readings.headings) {
            if (!known.contains(heading) && !m_mapping.ignored.contains(heading)) {
                m_file.ignoredColumns.append(heading);
            }
        }
    }

    const Groups& m_groups;
    const Group& m_readings;
    const FileMapping& m_mapping;
    MeasuredFile& m_file;
    ReadingFields m_fields;
};

TableColumns columnsOf(const Group& readings, const ReadingFields& fields)
{
    TableColumns columns;
    columns.line = readings.headingLine;
    columns.fieldCount = static_cast<int>(measuredColumns.size());
    for (auto field = fields.keyBegin(); field != fields.keyEnd(); ++field) {
        const auto index = static_cast<std::size_t>(*field);
        columns.fields.at(index) = static_cast<int>(index);
    }
    columns.values = {{columns.field(MeasuredColumn::Value), QString()}};
    return columns;
}

} // namespace

bool saysNoReading(const QString& text)
{
    return std::any_of(noReadingWords.cbegin(), noReadingWords.cend(), [&](const char* word) {
        return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    });
}

void readReadings(const QByteArray& text, const FileMapping& mapping, BadRowKeeping keeping,
                  MeasuredFile& file)
{
    requireNothingOfTables(file.path, mapping);
    file.hasTypes = true;
    const Groups groups = readGroups(text, file.problems);
    file.holdsForeignBytes = groups.isForeign;
    const Group* readings = groups.find(QLatin1String(readingGroup));
    if (readings == nullptr && file.problems.isEmpty()) {
        file.problems.add(1, QStringLiteral("the file has no group %1: it holds no readings")
                                 .arg(QLatin1String(readingGroup)));
    }
    if (!file.problems.isEmpty()) {
        return;
    }
    const Installations installations(groups, file.problems);
    const ReadingFields fields = FieldFinder(groups, *readings, mapping, file).find(installations);
    if (!file.problems.isEmpty()) {
        return;
    }
    const FileMapping whole = completed(mapping, *readings);
    const TableColumns columns = columnsOf(*readings, fields);
    ReadingRows rows(text, *readings, installations, whole, fields);
    RowReader(rows, whole, columns, file).read(keeping);
    file.units = rows.units();
}

} // namespace ags
