#pragma once

#include "domain/AlarmDetail.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// By how much the variations of a point are beyond their limits.
struct ToldExcess
{
    double total = 0;
    double daily = 0;
};

/// What a recipient knows of an alarm, by the name of the point.
using Told = std::map<std::string, ToldExcess>;

/// As it is kept with the notice.
std::string toText(const Told& told);
/// Throws DamagedDocument.
Told toldFrom(std::string_view text);

/// A point of which there is something to tell.
struct PointNews
{
    std::string point;
    std::optional<ToldExcess> before; ///< what was told last; nothing: the point is new in the alarm
    std::vector<AlarmDetail> details; ///< at least one
};

/// What a message tells.
struct News
{
    std::vector<PointNews> points; ///< the worst in proportion to its limit first
    std::size_t pointCount = 0;    ///< of the alarm, with those of which there is nothing new
    std::size_t left = 0;          ///< points of which the message after this one tells
    Told told;                     ///< what the recipient knows when all this is told
};

/// A message tells of no more points, so that servers take it however many points a delivery has.
constexpr std::size_t mostPointsTold = 500;

/// A point is news when it is new in the alarm, or when one of its excesses has grown by at least a tenth of
/// the limit since it was told. What grows by less adds up. A point that has left the alarm is forgotten, and
/// is new when it comes back. A name may have several details; the greatest of their excesses counts.
News newsOf(const std::vector<AlarmDetail>& details, const Told& told);

} // namespace monitorservice
