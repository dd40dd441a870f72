#include "alarm/NamedPoints.h"

#include "domain/PointLocation.h"

namespace monitorservice {

std::optional<double> referenceOf(const Measurements& measurements, std::int64_t point,
                                  const std::optional<double>& initialValue)
{
    if (initialValue) {
        return initialValue;
    }
    const std::optional<Sample> earliest = measurements.earliestSample(point);
    return earliest ? std::optional(earliest->value) : std::nullopt;
}

std::vector<std::shared_ptr<const JudgedPoint>>
namedPoints(const Session& session, const MonitoredQuantity& quantity, const std::string& name)
{
    const Measurements& measurements = session.measurements();
    std::vector<StoredPoint> stored;
    measurements.visitPoints(quantity.cell, quantity.subCategory, name,
                             [&stored](const StoredPoint& point) { stored.push_back(point); });
    std::vector<std::shared_ptr<const JudgedPoint>> points;
    for (const StoredPoint& one : stored) {
        const auto location = fromDocument<PointLocation>(one.document);
        if (const auto reference = referenceOf(measurements, one.key, location.initialValue)) {
            points.push_back(
                std::make_shared<JudgedPoint>(JudgedPoint{one.key, name, location.depth, *reference}));
        }
    }
    return points;
}

} // namespace monitorservice
