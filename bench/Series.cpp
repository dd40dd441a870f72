#include "Series.h"

#include "domain/PointLocation.h"
#include "time/Instant.h"
#include "time/LocalDays.h"

#include <cmath>

namespace monitorservice::bench {

Sample Series::at(int number) const
{
    return {begin + number * interval, number, std::nullopt, std::sin(number * 0.01) * 12.5,
            number % 2 == 0 ? "A" : "B"};
}

int Series::lastBefore(Instant instant) const
{
    return static_cast<int>((instant - begin - 1) / interval);
}

void insertPoint(Session& session, const std::string& cell, const std::string& subCategory,
                 const std::string& name, const Series& series)
{
    PointLocation point;
    point.id = session.newIdentifier();
    point.project = "p";
    point.cell = cell;
    point.subCategory = subCategory;
    point.name = name;
    point.links = R"([{"type":"model","rId":"m1"}])";
    point.insertCount = series.count;
    point.lastCount = series.count - 1;
    point.lastDate = isoText(series.at(series.count - 1).time);
    const std::int64_t key = session.measurements().insertPoint("p", point.id, toDocument(point), 0);
    LocalDays days("Europe/Vienna");
    for (int number = 0; number < series.count; ++number) {
        const Sample sample = series.at(number);
        session.measurements().insertSample(key, days.periodOf(sample.time), sample, 0);
    }
}

bool holdsSamples(simdjson::dom::array data, const Series& series, int first, int count)
{
    int number = first;
    for (const simdjson::dom::element element : data) {
        const Sample sample = series.at(number);
        const bool isSame = element["count"].get_int64().value() == sample.count &&
                            element["time"].get_string().value() == isoText(sample.time) &&
                            element["value"].get_double().value() == sample.value &&
                            element["timeFlag"].get_string().value() == sample.timeFlag;
        if (!isSame) {
            return false;
        }
        ++number;
    }
    return number == first + count;
}

std::string periodText(const std::string& from, const std::string& before)
{
    return R"("time":{"$gte":")" + from + R"(","$lt":")" + before + "\"}";
}

} // namespace monitorservice::bench
