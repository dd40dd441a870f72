#pragma once

#include "Question.h"
#include "RandomConditions.h"
#include "RandomDeliveries.h"
#include "SeenDocuments.h"

#include <string>

namespace monitorservice::test {

/// Requests of every kind, those that write and those that read mixed.
class RandomRequests
{
public:
    explicit RandomRequests(unsigned seed)
        : m_chance(seed), m_seen(m_chance), m_conditions(m_chance, m_seen), m_deliveries(m_chance, m_seen)
    {
    }

    Question next(Instant now);
    /// What was answered, so that later requests can be about it.
    void learn(const Question& question, const std::string& answer);

    Chance& chance() { return m_chance; }

private:
    using Parameters = std::vector<std::pair<std::string, std::string>>;

    Question write(Instant now);
    Question writeMeasured(Instant now);
    Question writeCell();
    Question writeGroup();
    Question writeSubCategory();
    Question writeCategory();
    Question writeProject();
    Question read();
    Question readOne();
    Question readList();
    Question readPoints();
    Question readStatistics();
    std::string groupMembers();
    std::string anyCategory();
    std::string anyName();
    std::string anyToken();
    Parameters listParameters(const std::string& kind, std::string where);

    Chance m_chance;
    SeenDocuments m_seen;
    RandomConditions m_conditions;
    RandomDeliveries m_deliveries;
};

} // namespace monitorservice::test
