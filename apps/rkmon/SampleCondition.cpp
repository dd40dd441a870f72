#include "SampleCondition.h"

#include "CommandOptions.h"
#include "Failure.h"

#include <RKPub.h>

void addSampleConditionOptions(CLI::App& app, SampleConditionOptions& options)
{
    addPeriodOptions(app, options.period, "Measured at this time or later",
                     "Measured on this day or earlier");
    options::addText(app, "--time", options.time, "Measured at this time")
        ->type_name("TIME")
        ->excludes("--since", "--until");
    app.add_option_function<qint32>(
           "--count", [&options](const qint32& count) { options.count = count; }, "With this count")
        ->type_name("N");
    options::addNumber(app, "--above", options.above, "With a greater value");
    options::addNumber(app, "--below", options.below, "With a smaller value");
    options::addNumber(app, "--value", options.value, "With this value")->excludes("--above", "--below");
    options::addText(app, "--flag", options.flag, "With this time flag")->type_name("FLAG");
}

SampleCondition::SampleCondition(const SampleConditionOptions& options,
                                 const std::function<QTimeZone()>& zoneOf)
    : m_options(options)
{
    restrictTo(options.period, zoneOf, m_period);
    if (!options.time.isEmpty()) {
        m_time = timeOf(options.time, "--time", zoneOf);
    }
    if (where().isEmpty()) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("which samples? Give --since, --until, --time, --count, --value, --above, "
                           "--below or --flag"));
    }
}

bool SampleCondition::isMetBy(const RKPointLocationData& sample) const
{
    const bool isInPeriod = m_period.isAllTime ||
                            (sample.time >= m_period.startTime && sample.time < m_period.endTime.addDays(1));
    return isInPeriod && (!m_time.isValid() || sample.time == m_time) &&
           (!m_options.count || sample.count == *m_options.count) &&
           (!m_options.value || sample.value == *m_options.value) &&
           (!m_options.above || sample.value > *m_options.above) &&
           (!m_options.below || sample.value < *m_options.below) &&
           (!m_options.flag || sample.timeFlag == *m_options.flag);
}

QJsonObject SampleCondition::where() const
{
    QJsonObject where;
    if (!m_period.isAllTime) {
        where.insert(
            QStringLiteral("time"),
            QJsonObject{{QStringLiteral("$gte"), RKPub::getQStringByDateTime(m_period.startTime)},
                        {QStringLiteral("$lt"), RKPub::getQStringByDateTime(m_period.endTime.addDays(1))}});
    }
    if (m_time.isValid()) {
        where.insert(QStringLiteral("time"), RKPub::getQStringByDateTime(m_time));
    }
    QJsonObject range;
    if (m_options.above) {
        range.insert(QStringLiteral("$gt"), *m_options.above);
    }
    if (m_options.below) {
        range.insert(QStringLiteral("$lt"), *m_options.below);
    }
    if (!range.isEmpty()) {
        where.insert(QStringLiteral("value"), range);
    }
    if (m_options.value) {
        where.insert(QStringLiteral("value"), *m_options.value);
    }
    if (m_options.count) {
        where.insert(QStringLiteral("count"), *m_options.count);
    }
    if (m_options.flag) {
        where.insert(QStringLiteral("timeFlag"), *m_options.flag);
    }
    return where;
}
