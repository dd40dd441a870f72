#pragma once

#include "Period.h"

#include <QJsonObject>
#include <QString>
#include <RKPointLocation.h>

#include <optional>

namespace CLI {
class App;
}

/// Which samples of a point, as the user says it.
struct SampleConditionOptions
{
    Period period;
    QString time;
    std::optional<qint32> count;
    std::optional<double> value;
    std::optional<double> above;
    std::optional<double> below;
    std::optional<QString> flag;
};

/// Adds --since, --until, --time, --count, --value, --above, --below and --flag.
void addSampleConditionOptions(CLI::App& app, SampleConditionOptions& options);

/// A condition on samples.
class SampleCondition
{
public:
    /// Throws a Failure (BadInput) for a time that cannot be read, and when nothing restricts the samples.
    SampleCondition(const SampleConditionOptions& options, const std::function<QTimeZone()>& zoneOf);

    bool isMetBy(const RKPointLocationData& sample) const;
    /// As the service takes it.
    QJsonObject where() const;

private:
    SampleConditionOptions m_options;
    RKTimePeriod m_period;
    QDateTime m_time;
};
