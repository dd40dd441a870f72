#include "store/sql/PointConditions.h"

#include "json/JsonText.h"

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

// Relations are stored as "links" and asked for as "entity", their identifiers as "uuid".
Where asStored(const Where& where)
{
    return where.readAs("entity", {"links"}).readAs("uuid", {"links", "rId"});
}

} // namespace

PointConditions pointConditions(const Where* where)
{
    if (where == nullptr) {
        return {};
    }
    auto [ofSamples, ofPoints] = where->split({samplePathTime, samplePathFlag});
    return {std::move(ofSamples), asStored(ofPoints)};
}

std::optional<Period> periodOf(const Where& ofSamples)
{
    Period period;
    for (const Condition& condition : ofSamples.conditions()) {
        const bool isBound = condition.path == samplePathTime && !condition.operands.empty() &&
                             condition.operands.front().instant &&
                             condition.operands.front().instant->finerDigits.empty();
        if (!isBound) {
            return std::nullopt;
        }
        const Instant bound = condition.operands.front().instant->milliseconds;
        if (condition.operation == Operator::GreaterOrEqual) {
            period.from = std::max(period.from, bound);
        } else if (condition.operation == Operator::Less) {
            period.before = std::min(period.before, bound);
        } else {
            return std::nullopt;
        }
    }
    return period;
}

Period periodAround(const Where& ofSamples)
{
    Period period;
    for (const Condition& condition : ofSamples.conditions()) {
        if (condition.path != samplePathTime || condition.operands.size() != 1 ||
            !condition.operands.front().instant) {
            continue;
        }
        // Bounds are rounded towards the past: the millisecond of an upper one is taken in.
        const Instant bound = condition.operands.front().instant->milliseconds;
        const Operator operation = condition.operation;
        if (operation == Operator::GreaterOrEqual || operation == Operator::Greater ||
            operation == Operator::Equal) {
            period.from = std::max(period.from, bound);
        }
        if (operation == Operator::LessOrEqual || operation == Operator::Less ||
            operation == Operator::Equal) {
            period.before = std::min(period.before, bound + 1);
        }
    }
    return period;
}

std::string sampleDocument(Instant time, const std::optional<int>& offsetMinutes, std::string_view timeFlag)
{
    std::string json = "{\"time\":\"";
    appendIsoText(json, time, offsetMinutes);
    json += "\",\"data\":{\"timeFlag\":";
    appendJsonString(json, timeFlag);
    json += "}}";
    return json;
}

bool leadsInto(const Where& where, std::string_view member)
{
    const auto& conditions = where.conditions();
    return std::any_of(conditions.begin(), conditions.end(),
                       [member](const Condition& condition) { return condition.names.front() == member; });
}

std::int64_t utcDayOf(Instant instant)
{
    constexpr std::int64_t millisecondsPerDay = 86'400'000;
    return instant / millisecondsPerDay - (instant % millisecondsPerDay < 0 ? 1 : 0);
}

} // namespace monitorservice
