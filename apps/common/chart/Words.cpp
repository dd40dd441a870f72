#include "chart/Words.h"

namespace chart {

const Words& englishWords()
{
    static const Words words{QStringLiteral("Date"),
                             QStringLiteral("Depth"),
                             QStringLiteral("alarm"),
                             QStringLiteral("limit %1"),
                             QStringLiteral("warning %1"),
                             QStringLiteral("dig level %1"),
                             QStringLiteral("%1, total variation"),
                             QStringLiteral("%1, daily variation"),
                             QStringLiteral("%1 per interval"),
                             QStringLiteral("%1, change since %2"),
                             QStringLiteral("%1, change since the day before")};
    return words;
}

const Words& chineseWords()
{
    static const Words words{QStringLiteral("日期"),
                             QStringLiteral("深度"),
                             QStringLiteral("报警"),
                             QStringLiteral("限值 %1"),
                             QStringLiteral("预警值 %1"),
                             QStringLiteral("开挖面 %1"),
                             QStringLiteral("%1累计变化量"),
                             QStringLiteral("%1日变化量"),
                             QStringLiteral("%1分段值"),
                             QStringLiteral("%1自%2起变化量"),
                             QStringLiteral("%1较前一日变化量")};
    return words;
}

} // namespace chart
