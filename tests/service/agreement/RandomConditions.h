#pragma once

#include "SeenDocuments.h"

#include <string>

namespace monitorservice::test {

/// Where documents with every operator on every path that was seen and on others, on values that were seen
/// and on others; some of them wrong.
class RandomConditions
{
public:
    RandomConditions(Chance& chance, SeenDocuments& seen) : m_chance(chance), m_seen(seen) {}

    std::string any(const std::string& kind);
    /// Conditions that choose samples, and perhaps others.
    std::string anyOfSamples();
    /// Conditions on the members of a sample.
    std::string anyOfOneSample();
    std::string anyOrder(const std::string& kind);

private:
    std::string path(const std::string& kind);
    std::string operand(const std::string& kind, const std::string& path);
    std::string condition(const std::string& kind, const std::string& path);
    std::string pattern(const std::string& value);
    std::string anyTime();
    std::string object(const std::vector<std::string>& members) const;

    Chance& m_chance;
    SeenDocuments& m_seen;
};

} // namespace monitorservice::test
