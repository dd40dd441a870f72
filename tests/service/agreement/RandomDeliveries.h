#pragma once

#include "SeenDocuments.h"
#include "time/Instant.h"

#include <string>

namespace monitorservice::test {

/// Deliveries: single, nested, in disorder, repeated, corrected, of several points, depths and
/// sub-categories, days across the change of a clock and with many samples; some of them wrong.
class RandomDeliveries
{
public:
    RandomDeliveries(Chance& chance, SeenDocuments& seen) : m_chance(chance), m_seen(seen) {}

    std::string any(Instant now);
    std::string anyLinks();
    std::string anyNumber();

private:
    std::string ofManyPoints(Instant now);
    std::string point(Instant now);
    std::string samples(Instant now);
    std::string anyCount(std::size_t usual);
    std::string sample(Instant time, const std::string& count);
    std::string spelt(Instant time);

    Chance& m_chance;
    SeenDocuments& m_seen;
    std::string m_latest; ///< to be sent again
};

/// The names of points that are delivered.
const std::vector<std::string>& pointNames();

} // namespace monitorservice::test
