#include "import/HeldComparison.h"

#include "import/HeldSamples.h"
#include "points/ConditionNames.h"

#include <QMap>
#include <QPair>

#include <numeric>

namespace {

// A point with its readings in all files.
struct ComparedPoint
{
    PointKey key;
    QList<const MeasuredPoint*> series;
    int readingCount = 0;
};

QList<ComparedPoint> comparedPoints(const QList<PlacedFile>& files)
{
    QHash<PointKey, int> indexes;
    QList<ComparedPoint> points;
    for (const PlacedFile& placed : files) {
        for (const MeasuredPoint& measured : placed.file.points) {
            const PointKey key{placed.target, measured.name, measured.depth};
            const auto known = indexes.constFind(key);
            const int index = known == indexes.constEnd() ? points.size() : *known;
            if (known == indexes.constEnd()) {
                indexes.insert(key, index);
                points.append({key, {}, 0});
            }
            points[index].series.append(&measured);
            points[index].readingCount += measured.readings.size();
        }
    }
    return points;
}

// Counts what becomes of the readings of a point of which `held` are held; these become what they are then.
void compare(const ComparedPoint& point, SamplesHeld& held, SampleOutcome& outcome)
{
    for (const MeasuredPoint* measured : point.series) {
        for (const Reading& reading : measured->readings) {
            const RKPointLocationData& sample = reading.sample;
            const auto found = held.find(slotOf(sample));
            if (found == held.end()) {
                ++outcome.inserted;
                if (point.series.size() > 1) { // another file may bring it again
                    held.insert(slotOf(sample), sample);
                }
                continue;
            }
            if (found->value == sample.value && found->timeFlag == sample.timeFlag) {
                ++outcome.unchanged;
                continue;
            }
            ++outcome.corrected;
            if (outcome.corrections.size() < SampleOutcome::keptCorrections) {
                outcome.corrections.append({point.key.name, point.key.depth, sample.time, sample.count,
                                            found->value, sample.value, found->timeFlag, sample.timeFlag});
            }
            *found = sample;
        }
    }
}

// Points whose samples are read by one request.
struct Portion
{
    HeldRequest request;
    QList<const ComparedPoint*> points;
    int readingCount = 0;

    void add(const ComparedPoint& point)
    {
        points.append(&point);
        readingCount += point.readingCount;
        if (!request.names.contains(point.key.name)) {
            request.names.append(point.key.name);
        }
        for (const MeasuredPoint* measured : point.series) {
            const QDateTime& first = measured->readings.constFirst().sample.time;
            const QDateTime& last = measured->readings.constLast().sample.time;
            request.first = request.first.isNull() || first < request.first ? first : request.first;
            request.last = request.last.isNull() || last > request.last ? last : request.last;
        }
    }

    // Whether one request can be for points of this name, too.
    bool canTake(const QString& cellId, const QString& name, int readings) const
    {
        constexpr int mostNames = 20; // a sample may be held for every minute
        constexpr int mostReadings = 50'000;
        return request.cellId == cellId && request.names.size() < mostNames &&
               readingCount + readings <= mostReadings &&
               conditionnames::sizeOf(request.names) + conditionnames::sizeOf(name) <=
                   conditionnames::largestSize;
    }
};

// Points of equal name stand in one portion, since a request cannot tell them apart.
QList<Portion> portionsOf(const QList<ComparedPoint>& points)
{
    QMap<QPair<QString, QString>, QList<const ComparedPoint*>> byName;
    for (const ComparedPoint& point : points) {
        byName[{point.key.target.cellId, point.key.name}].append(&point);
    }
    QList<Portion> portions;
    for (auto name = byName.cbegin(); name != byName.cend(); ++name) {
        const int readings =
            std::accumulate(name->cbegin(), name->cend(), 0,
                            [](int sum, const ComparedPoint* point) { return sum + point->readingCount; });
        const auto& [cellId, pointName] = name.key();
        if (portions.isEmpty() || !portions.constLast().canTake(cellId, pointName, readings)) {
            portions.append(Portion());
            portions.last().request.cellId = cellId;
        }
        for (const ComparedPoint* point : *name) {
            portions.last().add(*point);
        }
    }
    return portions;
}

} // namespace

std::optional<SampleOutcome> compareWithHeld(ServiceSession& session, const QList<PlacedFile>& files,
                                             const QSet<PointKey>& known)
{
    SampleOutcome outcome;
    QList<ComparedPoint> pointsKnown;
    for (const ComparedPoint& point : comparedPoints(files)) {
        if (known.contains(point.key)) {
            pointsKnown.append(point);
        } else {
            SamplesHeld none;
            compare(point, none, outcome);
        }
    }
    HeldSamples held(session, known);
    for (const Portion& portion : portionsOf(pointsKnown)) {
        std::optional<QHash<PointKey, SamplesHeld>> samples = held.read(portion.request);
        if (!samples) {
            return std::nullopt;
        }
        for (const ComparedPoint* point : portion.points) {
            compare(*point, (*samples)[point->key], outcome);
        }
    }
    sortCorrections(outcome.corrections);
    return outcome;
}
