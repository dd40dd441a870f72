#pragma once

#include "domain/Sample.h"
#include "store/sql/PointConditions.h"
#include "store/sql/TextMatcher.h"

#include <optional>

namespace monitorservice {

/// Which samples of the points the conditions of a query choose.
class SampleChoice
{
public:
    explicit SampleChoice(const Where& ofSamples)
        : m_choosesAll(ofSamples.isEmpty()), m_period(periodOf(ofSamples)),
          m_around(m_period ? *m_period : periodAround(ofSamples)), m_matcher(ofSamples)
    {
    }

    /// There are no conditions.
    bool choosesAll() const { return m_choosesAll; }
    /// Those of around() are chosen, and no others.
    bool isPeriod() const { return m_period.has_value(); }
    /// In which all chosen samples lie.
    const Period& around() const { return m_around; }

    bool chooses(const Sample& sample)
    {
        if (sample.time < m_around.from || sample.time >= m_around.before) {
            return false;
        }
        return m_period ||
               m_matcher.matches(sampleDocument(sample.time, sample.offsetMinutes, sample.timeFlag));
    }

private:
    bool m_choosesAll;
    std::optional<Period> m_period;
    Period m_around;
    TextMatcher m_matcher;
};

} // namespace monitorservice
