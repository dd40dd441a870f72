#pragma once

#include <QtGlobal>

/// What the daily limit of a threshold group counts in (PointLocSetting::dayVarType).
namespace daily {

constexpr qint32 inUnits = 0;
constexpr qint32 inPercent = 1; ///< of the reference value

} // namespace daily
