#include "ags/AgsExport.h"

#include "Failure.h"
#include "ags/AgsDefinitions.h"
#include "ags/AgsGroups.h"
#include "ags/AgsHeadings.h"
#include "ags/AgsText.h"

#include <QHash>
#include <QLocale>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cstdlib>

namespace ags {

namespace {

constexpr const char* edition = "4.1";

QString text(const char* ascii)
{
    return QLatin1String(ascii);
}

// Fails for what would come back as another text.
const QString& required(const QString& name)
{
    const bool hasControl = std::any_of(name.cbegin(), name.cend(), [](QChar character) {
        return character.category() == QChar::Other_Control;
    });
    if (hasControl || name != name.trimmed()) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("\"%1\" cannot stand in an AGS file: it has blanks at its ends, or a "
                                     "control character")
                          .arg(name));
    }
    return name;
}

QString numberText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// With as many decimals as the others, so that all are of one type.
class Distances
{
public:
    explicit Distances(const QList<MeasuredSeries>& all)
    {
        static const QRegularExpression plain(QStringLiteral("\\A-?\\d+(?:\\.(\\d+))?\\z"));
        for (const MeasuredSeries& series : all) {
            const QRegularExpressionMatch match = plain.match(series.point.depth);
            m_areNumbers = m_areNumbers && (series.point.depth.isEmpty() || match.hasMatch());
            m_decimals = std::max(m_decimals, match.capturedLength(1));
        }
    }

    QString type() const { return m_areNumbers ? QStringLiteral("%1DP").arg(m_decimals) : text("X"); }

    QString textOf(QString depth) const
    {
        if (depth.isEmpty() || !m_areNumbers || m_decimals == 0) {
            return depth;
        }
        const int point = depth.indexOf(u'.');
        const int present = point < 0 ? 0 : depth.size() - point - 1;
        return depth + (point < 0 ? text(".") : QString()) + QString(m_decimals - present, u'0');
    }

private:
    bool m_areNumbers = true;
    int m_decimals = 0;
};

// The types of readings: aliases, as short as they are, unless one is another's name.
class Codes
{
public:
    explicit Codes(const QList<MeasuredSeries>& all)
    {
        QHash<QString, QSet<QString>> meanings;
        for (const MeasuredSeries& series : all) {
            meanings[series.alias].insert(series.subCategory);
            meanings[series.subCategory].insert(series.subCategory);
        }
        for (const MeasuredSeries& series : all) {
            const bool isClear = !series.alias.isEmpty() && meanings.value(series.alias).size() == 1;
            m_codes.insert(series.subCategory, required(isClear ? series.alias : series.subCategory));
        }
    }

    QString of(const QString& subCategory) const { return m_codes.value(subCategory); }

    QList<Abbreviation> abbreviations() const
    {
        QList<Abbreviation> abbreviations;
        for (auto code = m_codes.cbegin(); code != m_codes.cend(); ++code) {
            abbreviations.append({text(readingTypeHeading), *code, code.key()});
        }
        return abbreviations;
    }

private:
    QMap<QString, QString> m_codes; // by name of the sub-category
};

// With the offset that the sample has.
QString timeText(const QDateTime& time)
{
    constexpr int minute = 60;
    const int offset = time.offsetFromUtc();
    const int minutes = std::abs(offset) / minute;
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")) +
           QStringLiteral("%1%2:%3")
               .arg(QChar(offset < 0 ? u'-' : u'+'))
               .arg(minutes / minute, 2, 10, QChar(u'0'))
               .arg(minutes % minute, 2, 10, QChar(u'0'));
}

Head readingHead(const QString& distanceType)
{
    Head head{
        text(readingGroup),
        {text(locationHeading), text(installationHeading), text(distanceHeading), text(timeHeading),
         text(readingTypeHeading), text(referenceHeading), text(readingHeading), text(readingUnitHeading)},
        {QString(), QString(), text(distanceUnit), text(timeUnit), QString(), QString(), QString(),
         QString()},
        {text("ID"), text("X"), distanceType, text("DT"), text("PA"), text("X"), text("XN"), text("PU")}};
    for (const OwnHeading& own : ownHeadings) {
        head.headings.append(text(own.name));
        head.units.append(QString());
        head.types.append(text(own.type));
    }
    return head;
}

QByteArray readingRows(const Monitored& monitored, const Codes& codes, const Distances& distances)
{
    QByteArray rows;
    for (const MeasuredSeries& series : monitored.series) {
        const QString distance = distances.textOf(series.point.depth);
        const QString code = codes.of(series.subCategory);
        const QString initialValue = series.initialValue ? numberText(*series.initialValue) : QString();
        for (const RKPointLocationData& sample : series.point.data) {
            const QString count = QString::number(sample.count);
            // Only with the count is each row unlike the others.
            rows +=
                rowText(text(dataDescriptor), {series.point.name, series.point.name, distance,
                                               timeText(sample.time), code, count, numberText(sample.value),
                                               series.unit, count, required(sample.timeFlag), initialValue});
        }
    }
    return rows;
}

// Points in several sub-categories have one row.
QList<QStringList> once(const QList<QStringList>& rows)
{
    QList<QStringList> result;
    QSet<QStringList> seen;
    for (const QStringList& row : rows) {
        if (!seen.contains(row)) {
            seen.insert(row);
            result.append(row);
        }
    }
    return result;
}

Table projectTable(const Monitored& monitored)
{
    return {{text(projectGroup),
             {text("PROJ_ID"), text("PROJ_NAME")},
             {QString(), QString()},
             {text("ID"), text("X")}},
            {{monitored.projectId, required(monitored.projectName)}}};
}

Table locationTable(const QList<MeasuredSeries>& all)
{
    Table table{{text(locationGroup), {text(locationHeading)}, {QString()}, {text("ID")}}, {}};
    for (const MeasuredSeries& series : all) {
        table.rows.append({required(series.point.name)});
    }
    table.rows = once(table.rows);
    return table;
}

Table installationTable(const QList<MeasuredSeries>& all, const Distances& distances)
{
    Table table{{text(installationGroup),
                 {text(locationHeading), text(installationHeading), text(distanceHeading)},
                 {QString(), QString(), text(distanceUnit)},
                 {text("ID"), text("X"), distances.type()}},
                {}};
    for (const MeasuredSeries& series : all) {
        table.rows.append(
            {series.point.name, series.point.name, distances.textOf(required(series.point.depth))});
    }
    table.rows = once(table.rows);
    return table;
}

} // namespace

QByteArray fileOf(const Monitored& monitored)
{
    const Codes codes(monitored.series);
    const Distances distances(monitored.series);
    const Head readings = readingHead(distances.type());
    const QList<Abbreviation> abbreviations = codes.abbreviations();
    const QList<Table> project{
        projectTable(monitored),
        transmissionTable({text(edition), monitored.producer, required(monitored.monitoring),
                           monitored.projectName, monitored.day},
                          abbreviations)};
    const QList<Table> site{locationTable(monitored.series), installationTable(monitored.series, distances)};
    QStringList units;
    for (const MeasuredSeries& series : monitored.series) {
        units.append(required(series.unit));
    }
    const QList<Table> definitions = definitionTables(project + site, readings, units, abbreviations);
    QByteArray file;
    for (const Table& table : project + definitions + site) {
        file += tableText(table) + lineEnd;
    }
    return file + headText(readings) + readingRows(monitored, codes, distances);
}

} // namespace ags
