#pragma once

#include "alarm/AlarmBook.h"
#include "alarm/Excess.h"
#include "alarm/QuantityLimits.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// What has changed of a point, which is stored as it is now.
struct ChangedPoint
{
    std::int64_t key = 0;
    std::string name;
    std::string depth;
    std::optional<double> initialValue;
    bool initialValueChanged = false;
    std::int64_t samplesHeld = 0;    ///< now
    std::vector<Reading> readings;   ///< those inserted or corrected, in the order of time and count
    std::vector<ReadingKey> removed; ///< those held no more, alike
    bool isAppended = false;         ///< all that happened is that these readings follow those held before
};

/// Judges the readings of one monitoring and sub-category that have changed, and those whose reference has
/// changed with them, and keeps the alarms what follows from the readings held: which readings are in excess
/// depends on the readings, the initial values and the groups, not on how and in which order they came.
///
/// Judged are the readings inserted and corrected; those of the next measured day when the last reading of a
/// day is another than before, or gone; and all of the point when its initial value changes, or its earliest
/// reading while it has none. A group that changes judges nothing by itself.
class Judgement
{
public:
    /// What became of the alarms.
    struct Outcome
    {
        std::vector<std::string> changedAlarms;         ///< those raised or changed that are still there
        std::vector<std::string> removedAlarms;         ///< those of which no reading is left
        std::map<std::string, std::string> alarmOfName; ///< of each point name with readings newly in excess

        /// Those changed and those removed.
        std::vector<std::string> touchedAlarms() const;
    };

    /// All of it must outlive the judgement.
    Judgement(Session& session, const MonitoredQuantity& quantity, LocalDays& days, const Author& author);

    /// Tells the store that a judgement of the quantity is about to be made.
    static void expect(const Session& session, const MonitoredQuantity& quantity);

    /// False when no group limits the name, and there are no alarms in which it might stand: its readings
    /// need not be judged.
    bool concerns(std::string_view name) const { return m_hasAlarms || !m_limits.of(name).empty(); }

    void judge(const ChangedPoint& changed);

    /// Takes all readings of a point out of the alarms; the point is to be removed before finish().
    void forget(std::int64_t point, const std::string& name);

    /// Writes the alarms.
    Outcome finish();

private:
    using AlarmsOfReadings = std::map<ReadingKey, std::string>;

    // What is new of a point name.
    struct News
    {
        WorstReadings fresh;                         // found in excess for the first time
        std::map<std::string, std::size_t> rejudged; // alarms with readings judged again, and how many of
                                                     // these are withdrawn
        std::optional<Instant> depthsSince;          // a depth was measured from here on
    };

    class PointJudge;

    std::set<std::string> alarmsOf(const News& news,
                                   const std::vector<std::shared_ptr<const JudgedPoint>>& points);
    std::vector<AlarmDetail> judgeAgain(const std::string& alarm, const std::string& name,
                                        const std::vector<std::shared_ptr<const JudgedPoint>>& points,
                                        std::size_t& withdrawn);
    std::vector<AlarmDetail> addFresh(const std::string& alarm, const std::string& name, const News& news);

    Session& m_session;
    const MonitoredQuantity& m_quantity;
    LocalDays& m_days;
    QuantityLimits m_limits;
    AlarmBook m_book;
    bool m_hasAlarms;
    std::map<std::string, News> m_news;
};

} // namespace monitorservice
