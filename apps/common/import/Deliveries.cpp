#include "import/Deliveries.h"

#include "PointNames.h"

#include <QHashFunctions>

#include <algorithm>

namespace {

// A reading's place in a file, and its time in milliseconds since 1970, which compares faster than a
// QDateTime.
struct Place
{
    qint64 time;
    int point;
    int reading;
};

const Reading& readingAt(const MeasuredFile& file, const Place& place)
{
    return file.points[place.point].readings[place.reading];
}

// All readings of the file in time order; at one time in the order of the points.
QVector<Place> placesInTime(const MeasuredFile& file)
{
    QVector<Place> places;
    places.reserve(file.readingCount);
    for (int point = 0; point < file.points.size(); ++point) {
        const QVector<Reading>& readings = file.points[point].readings;
        for (int reading = 0; reading < readings.size(); ++reading) {
            places.append({readings[reading].sample.time.toMSecsSinceEpoch(), point, reading});
        }
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const Place& left, const Place& right) { return left.time < right.time; });
    return places;
}

QHash<PointKey, Reading> earliestReadings(const QList<PlacedFile>& files)
{
    QHash<PointKey, Reading> earliest;
    for (const PlacedFile& placed : files) {
        for (const MeasuredPoint& point : placed.file.points) {
            const PointKey key{placed.target, point.name, point.depth};
            const Reading& first = point.readings.constFirst();
            const auto found = earliest.constFind(key);
            if (found == earliest.constEnd() || first.sample.time < found->sample.time) {
                earliest.insert(key, first);
            }
        }
    }
    return earliest;
}

// Splits the readings of one file into deliveries.
class FileSplitter
{
public:
    FileSplitter(const PlacedFile& placed, const QHash<PointKey, Reading>& earliest,
                 const QSet<PointKey>& known, int largest)
        : m_placed(placed), m_earliest(earliest), m_known(known), m_largest(largest)
    {
    }

    QList<Delivery> deliveries()
    {
        for (const Place& place : placesInTime(m_placed.file)) {
            const Reading& reading = readingAt(m_placed.file, place);
            if (mustBegin()) {
                begin(reading.sample.time);
            }
            add(place, reading);
        }
        return m_deliveries;
    }

private:
    bool mustBegin() const
    {
        return m_deliveries.isEmpty() || m_deliveries.constLast().sampleCount == m_largest;
    }

    void begin(const QDateTime& time)
    {
        m_deliveries.append({m_placed.file.path, m_placed.target, {}, 0, time});
        m_indexes = QVector<int>(m_placed.file.points.size(), -1);
    }

    void add(const Place& place, const Reading& reading)
    {
        Delivery& delivery = m_deliveries.last();
        int& index = m_indexes[place.point];
        if (index < 0) {
            index = delivery.points.size();
            delivery.points.append(emptyPoint(m_placed.file.points[place.point]));
        }
        RKPointLocation& point = delivery.points[index];
        point.data.append(reading.sample);
        point.lastCount = reading.sample.count;
        point.lastDate = reading.sample.time;
        ++point.insertCount;
        ++delivery.sampleCount;
    }

    RKPointLocation emptyPoint(const MeasuredPoint& measured) const
    {
        const PointKey key{m_placed.target, measured.name, measured.depth};
        RKPointLocation point;
        point.cellId = m_placed.target.cellId;
        point.subCategoryId = m_placed.target.subCategoryId;
        point.name = measured.name;
        point.depth = measured.depth;
        if (!m_known.contains(key)) {
            point.initialValue = measured.hasInitialValue ? measured.initialValue.value_or(0.0)
                                                          : m_earliest.value(key).sample.value;
        }
        return point;
    }

    const PlacedFile& m_placed;
    const QHash<PointKey, Reading>& m_earliest;
    const QSet<PointKey>& m_known;
    int m_largest;
    QList<Delivery> m_deliveries;
    QVector<int> m_indexes; // of the delivery's points, by the file's; -1: not in it yet
};

// What identifies a sample, and where it was first seen.
struct SampleKey
{
    int point;
    qint64 time;
    qint32 count;

    bool operator==(const SampleKey& other) const
    {
        return point == other.point && time == other.time && count == other.count;
    }
};

uint qHash(const SampleKey& key, uint seed = 0)
{
    return ::qHash(key.time, seed) ^ (::qHash(key.point, seed) * 31) ^ (::qHash(key.count, seed) * 127);
}

struct Seen
{
    const MeasuredFile* file;
    const Reading* reading;
};

// Points that more than one file measures, numbered: only those can be contradicted.
QHash<PointKey, int> sharedPoints(const QList<PlacedFile>& files)
{
    QSet<PointKey> once;
    QHash<PointKey, int> shared;
    for (const PlacedFile& placed : files) {
        for (const MeasuredPoint& point : placed.file.points) {
            const PointKey key{placed.target, point.name, point.depth};
            if (once.contains(key) && !shared.contains(key)) {
                shared.insert(key, shared.size());
            }
            once.insert(key);
        }
    }
    return shared;
}

QString contradiction(const MeasuredPoint& point, const Reading& reading, const Seen& seen)
{
    return QStringLiteral(
               "%1 has another value on line %2 of %3 for the same time and count (%4 there, %5 here)")
        .arg(pointText(point.name, point.depth))
        .arg(seen.reading->line)
        .arg(seen.file->path)
        .arg(seen.reading->sample.value)
        .arg(reading.sample.value);
}

} // namespace

uint qHash(const PointKey& key, uint seed)
{
    return qHash(key.target.cellId, seed) ^ qHash(key.target.subCategoryId, seed + 1) ^
           qHash(key.name, seed + 2) ^ qHash(key.depth, seed + 3);
}

QList<Delivery> deliveriesOf(const QList<PlacedFile>& files, const QSet<PointKey>& known, int largest)
{
    const QHash<PointKey, Reading> earliest = earliestReadings(files);
    QList<Delivery> deliveries;
    for (const PlacedFile& placed : files) {
        deliveries.append(FileSplitter(placed, earliest, known, largest).deliveries());
    }
    // Limits are checked for days behind those held before: an older delivery that came after a newer one
    // would never be checked.
    std::stable_sort(deliveries.begin(), deliveries.end(), [](const Delivery& left, const Delivery& right) {
        return left.firstTime < right.firstTime;
    });
    return deliveries;
}

QList<QList<Delivery>> requestsOf(const QList<Delivery>& deliveries, int largest)
{
    QList<QList<Delivery>> requests;
    int sampleCount = 0;
    for (const Delivery& delivery : deliveries) {
        const auto hasMonitoring = [&](const Delivery& other) {
            return other.target.cellId == delivery.target.cellId;
        };
        const bool fits =
            !requests.isEmpty() && sampleCount + delivery.sampleCount <= largest &&
            std::none_of(requests.constLast().cbegin(), requests.constLast().cend(), hasMonitoring);
        if (!fits) {
            requests.append(QList<Delivery>());
            sampleCount = 0;
        }
        requests.last().append(delivery);
        sampleCount += delivery.sampleCount;
    }
    return requests;
}

QStringList contradictions(const QList<PlacedFile>& files)
{
    const QHash<PointKey, int> shared = sharedPoints(files);
    QHash<SampleKey, Seen> seen;
    QStringList lines;
    for (const PlacedFile& placed : files) {
        Problems problems;
        for (const MeasuredPoint& point : placed.file.points) {
            const int number = shared.value({placed.target, point.name, point.depth}, -1);
            if (number < 0) {
                continue;
            }
            for (const Reading& reading : point.readings) {
                const SampleKey key{number, reading.sample.time.toMSecsSinceEpoch(), reading.sample.count};
                const auto found = seen.constFind(key);
                if (found == seen.constEnd()) {
                    seen.insert(key, {&placed.file, &reading});
                } else if (found->reading->sample.value != reading.sample.value ||
                           found->reading->sample.timeFlag != reading.sample.timeFlag) {
                    problems.add(reading.line, contradiction(point, reading, *found));
                }
            }
        }
        lines.append(problems.lines(placed.file.path));
    }
    return lines;
}

QSet<PointKey> pointsFromZero(const QList<PlacedFile>& files)
{
    QSet<PointKey> points;
    for (const PlacedFile& placed : files) {
        for (const MeasuredPoint& point : placed.file.points) {
            if (point.initialValue == 0.0) {
                points.insert({placed.target, point.name, point.depth});
            }
        }
    }
    return points;
}

QSet<PointKey> pointsOf(const QList<PlacedFile>& files)
{
    QSet<PointKey> points;
    for (const PlacedFile& placed : files) {
        for (const MeasuredPoint& point : placed.file.points) {
            points.insert({placed.target, point.name, point.depth});
        }
    }
    return points;
}
