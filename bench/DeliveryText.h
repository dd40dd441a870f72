#pragma once

#include <cstddef>
#include <string>

/// One reading of a delivery: the minutes after 2015-12-18T00:00:00-08:00 as its count and time.
std::string sampleText(std::size_t number);

/// The identifiers of where a delivery goes.
struct DeliveryTarget
{
    std::string project;
    std::string cell;
    std::string subCategory;
};

/// A delivery of the sample `first` and the ones after it, of each of the points W0, W1, …
std::string deliveryText(const DeliveryTarget& target, std::size_t points, std::size_t samplesPerPoint,
                         std::size_t first);

/// A delivery of one point with as many samples as fit into the largest body that the service takes.
std::string largestDelivery(const DeliveryTarget& target);
