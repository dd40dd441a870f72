#include "delivery/Delivery.h"

#include <algorithm>

namespace monitorservice {

namespace {

std::string indexed(std::size_t index)
{
    return "[" + std::to_string(index) + "]";
}

} // namespace

std::string Delivery::nameOf(std::size_t element) const
{
    const Element& place = elements.at(element);
    return indexed(place.outer) + (place.inner ? indexed(*place.inner) : std::string());
}

std::string Delivery::nameOfRow(std::uint32_t row) const
{
    const auto after = std::upper_bound(
        elements.begin(), elements.end(), row,
        [](std::uint32_t wanted, const Element& element) { return wanted < element.firstRow; });
    const auto element = static_cast<std::size_t>(after - elements.begin()) - 1;
    return nameOf(element) + ".data" + indexed(row - elements[element].firstRow);
}

} // namespace monitorservice
