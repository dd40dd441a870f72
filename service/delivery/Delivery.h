#pragma once

#include "time/Instant.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// A sample as it was delivered. A delivery may have a million of them.
struct DeliveredSample
{
    static constexpr std::int16_t utc = INT16_MAX;

    Instant time = 0;
    double value = 0;
    std::int32_t count = 0;
    std::uint32_t row = 0;          ///< its place among all samples of the delivery
    std::int16_t offsetMinutes = 0; ///< of the time as it was written; utc: it ended in "Z"
    std::uint16_t timeFlag = 0;     ///< index into Delivery::timeFlags
};

/// A point of a delivery with its samples. What was not sent, or sent as null, empty or 0, is absent.
struct DeliveredPoint
{
    std::string cell;
    std::string subCategory;
    std::string name;
    std::string depth;
    std::optional<std::string> project;
    std::optional<std::string> alias;
    std::optional<std::int32_t> dataType;
    std::optional<double> initialValue;
    std::optional<std::string> offsetDirection;
    std::optional<std::string> fileId;
    std::optional<std::string> links;     ///< JSON array as PointLocation holds it
    std::vector<DeliveredSample> samples; ///< by time and count, each of them once
    std::size_t rows = 0;                 ///< samples as sent, repeated ones too
    std::size_t element = 0;              ///< the first element that names the point
};

/// What one request delivers.
struct Delivery
{
    /// An element as it was sent: where it stood, and the first row of its samples.
    struct Element
    {
        std::size_t outer = 0;
        std::optional<std::size_t> inner; ///< within the inner array of a nested delivery
        std::uint32_t firstRow = 0;
    };

    std::vector<DeliveredPoint> points; ///< each point once, in the order in which they are first named
    std::vector<std::string> timeFlags;
    std::vector<Element> elements;

    /// How messages name an element: "[2]", or "[1][2]" in a nested delivery.
    std::string nameOf(std::size_t element) const;
    /// How messages name a sample: "[2].data[7]".
    std::string nameOfRow(std::uint32_t row) const;
};

} // namespace monitorservice
