#pragma once

#include "Fuzzer.h"
#include "reading/MeasuredFile.h"

#include <QPair>
#include <QSet>

#include <cmath>

namespace fuzz {

/// What holds of the readings of every file, whatever is wrong with it.
inline void checkReadings(const MeasuredFile& file)
{
    int count = 0;
    QSet<QPair<QString, QPair<QString, QString>>> points;
    for (const MeasuredPoint& point : file.points) {
        require(!point.name.isEmpty() && !point.readings.isEmpty(), "a point has a name and readings");
        const QPair<QString, QPair<QString, QString>> key{point.name, {point.depth, point.subCategory}};
        require(!points.contains(key), "a point stands once");
        points.insert(key);
        count += point.readings.size();
        const RKPointLocationData* last = nullptr;
        for (const Reading& reading : point.readings) {
            const RKPointLocationData& sample = reading.sample;
            require(sample.time.isValid() && std::isfinite(sample.value) && sample.count >= 0,
                    "a reading has a time, a finite value and a count");
            require(last == nullptr || last->time < sample.time ||
                        (last->time == sample.time && last->count < sample.count),
                    "readings are in the order of time and count, each once");
            last = &sample;
        }
    }
    require(count == file.readingCount, "the readings are counted");
}

} // namespace fuzz
