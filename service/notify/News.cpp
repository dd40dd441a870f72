#include "notify/News.h"

#include "domain/Document.h"
#include "json/JsonText.h"

#include <simdjson.h>

#include <algorithm>
#include <utility>

namespace monitorservice {

namespace {

// An excess with the limit that it is beyond.
struct LimitedExcess
{
    double excess = 0;
    double limit = 0;

    void raise(double other, double otherLimit)
    {
        if (other > excess) {
            *this = {other, otherLimit};
        }
    }

    double proportion() const { return limit > 0 ? excess / limit : 0; }

    bool hasGrownSince(double told) const
    {
        // 2.3 - 1.3 is less than 1 in binary, and is to be a tenth of 10 all the same.
        constexpr double rounding = 1e-9;
        return excess > told && excess - told >= limit / 10 * (1 - rounding);
    }
};

// What the details of one name say together.
struct PointState
{
    LimitedExcess total;
    LimitedExcess daily;
    std::vector<AlarmDetail> details;

    double proportion() const { return std::max(total.proportion(), daily.proportion()); }
    ToldExcess excess() const { return {total.excess, daily.excess}; }
    bool isNewsAfter(const ToldExcess& told) const
    {
        return total.hasGrownSince(told.total) || daily.hasGrownSince(told.daily);
    }
};

using PointStates = std::map<std::string, PointState>;

PointStates statesOf(const std::vector<AlarmDetail>& details)
{
    PointStates states;
    for (const AlarmDetail& detail : details) {
        PointState& state = states[detail.point];
        state.total.raise(detail.totalExcess, detail.totalLimit);
        state.daily.raise(detail.dailyExcess, detail.dayLimit);
        state.details.push_back(detail);
    }
    return states;
}

std::optional<ToldExcess> find(const Told& told, const std::string& point)
{
    const auto found = told.find(point);
    return found == told.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::string toText(const Told& told)
{
    JsonObjectWriter text;
    for (const auto& [point, excess] : told) {
        text.json(point,
                  JsonObjectWriter().number("total", excess.total).number("daily", excess.daily).finish());
    }
    return text.finish();
}

Told toldFrom(std::string_view text)
{
    try {
        Told told;
        simdjson::dom::parser parser;
        const simdjson::dom::object points = parser.parse(text.data(), text.size());
        for (const auto& [point, excess] : points) {
            told[std::string(point)] = {excess["total"].get_double(), excess["daily"].get_double()};
        }
        return told;
    } catch (const simdjson::simdjson_error& error) {
        throw DamagedDocument(std::string("what was told of an alarm: ") + error.what());
    }
}

News newsOf(const std::vector<AlarmDetail>& details, const Told& told)
{
    PointStates states = statesOf(details);
    std::vector<PointStates::value_type*> changed;
    News news;
    news.pointCount = states.size();
    for (PointStates::value_type& state : states) {
        const std::optional<ToldExcess> before = find(told, state.first);
        if (before) {
            news.told.insert({state.first, *before});
        }
        if (!before || state.second.isNewsAfter(*before)) {
            changed.push_back(&state);
        }
    }
    std::stable_sort(changed.begin(), changed.end(), [](const auto* left, const auto* right) {
        return left->second.proportion() > right->second.proportion();
    });
    const std::size_t tellable = std::min(changed.size(), mostPointsTold);
    news.left = changed.size() - tellable;
    changed.resize(tellable);
    for (PointStates::value_type* const state : changed) {
        news.points.push_back({state->first, find(told, state->first), std::move(state->second.details)});
        news.told[state->first] = state->second.excess();
    }
    return news;
}

} // namespace monitorservice
