// Input: an AGS file. What is read of it is sound, what is wrong with it has a line, and good readings are
// the same when they are written and read again.

#include "Failure.h"
#include "Fuzzer.h"
#include "ReadingChecks.h"
#include "ags/AgsExport.h"
#include "import/AnyFile.h"
#include "import/BadRowsFile.h"

namespace {

using fuzz::require;

const QString name = QStringLiteral("f.ags");

ags::Monitored monitoredOf(const MeasuredFile& file)
{
    ags::Monitored monitored{QStringLiteral("1"), QStringLiteral("p"), QStringLiteral("f"),
                             QStringLiteral("m"), QDate(2024, 1, 1),   {}};
    for (const MeasuredPoint& point : file.points) {
        RKPointLocation location;
        location.name = point.name;
        location.depth = point.depth;
        for (const Reading& reading : point.readings) {
            location.data.append(reading.sample);
        }
        monitored.series.append(
            {location, point.subCategory, QString(), QStringLiteral("u"), point.initialValue});
    }
    return monitored;
}

QStringList described(const MeasuredFile& file)
{
    QStringList rows;
    for (const MeasuredPoint& point : file.points) {
        for (const Reading& reading : point.readings) {
            const RKPointLocationData& sample = reading.sample;
            rows.append(QStringList{
                point.subCategory, point.name, point.depth, QString::number(sample.time.toMSecsSinceEpoch()),
                QString::number(sample.count), QString::number(sample.value, 'g', 17), sample.timeFlag}
                            .join(QChar(u'|')));
        }
    }
    rows.sort();
    return rows;
}

void checkRoundTrip(const MeasuredFile& file)
{
    QByteArray written;
    try {
        written = ags::fileOf(monitoredOf(file));
    } catch (const Failure&) {
        return; // a text that it cannot hold
    }
    const MeasuredFile again = readAnyFile(name, written, {});
    require(
        again.problems.isEmpty() && described(again) == described(file), "what is written reads as it was",
        [&] { return written.toStdString() + again.problems.lines(name).join(QChar(u'\n')).toStdString(); });
}

void checkBadRows(const MeasuredFile& file, const FileMapping& mapping)
{
    require(file.badRows.rows.size() <= file.problems.count(), "a bad row has a problem");
    if (file.isReadable && !file.badRows.rows.isEmpty()) {
        const QByteArray bad = badRowsText({&file});
        require(readAnyFile(name, bad, mapping).isFormatKnown, "bad rows make a file that can be read",
                [&] { return bad.toStdString(); });
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    FileMapping mapping;
    mapping.utcOffset = 3600;
    const MeasuredFile file = readAnyFile(name, content, mapping, BadRowKeeping::Rows);
    fuzz::checkReadings(file);
    checkBadRows(file, mapping);
    if (file.problems.isEmpty()) {
        checkRoundTrip(file);
    }
    return 0;
}
