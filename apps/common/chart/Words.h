#pragma once

#include <QString>

namespace chart {

/// What a chart says besides names, in one language.
struct Words
{
    QString date;
    QString depth;
    QString alarm;
    /// With "%1" for the amount.
    QString limit;
    QString warning;
    /// With "%1" for the depth.
    QString level;
    /// With "%1" for what is measured.
    QString totalVariation;
    QString dailyVariation;
    QString increment;
    /// With "%1" for what is measured and "%2" for a day.
    QString changeSince;
    QString changeSincePrevious;
};

const Words& englishWords();
const Words& chineseWords();

} // namespace chart
