#pragma once

#include "alarm/NamedPoints.h"
#include "domain/Alarm.h"
#include "domain/AlarmDepth.h"
#include "domain/AlarmDetail.h"
#include "domain/MonitoredQuantity.h"
#include "domain/Stamp.h"
#include "store/Session.h"
#include "time/LocalDays.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// The alarms of one quantity as documents: one for each day of the project on which readings were found in
/// excess, with the worst readings of each point name as its details.
class AlarmBook
{
public:
    /// All of it must outlive the book.
    AlarmBook(Session& session, const MonitoredQuantity& quantity, LocalDays& days, const Author& author)
        : m_session(session), m_quantity(quantity), m_days(days), m_author(author)
    {
    }

    /// The identifier of today's alarm, which is made when there is none.
    const std::string& today();

    AlarmDetail detailOf(const Excess& excess) const;
    std::vector<AlarmDetail> detailsOf(const std::string& alarm, const std::string& name) const;

    /// Makes `worst` the details of the point name in the alarm, with the depths of `points`, those of the
    /// name. When readings were withdrawn from it, the audit trail keeps what the details were.
    void update(const std::string& alarm, const std::string& name, const std::vector<AlarmDetail>& worst,
                const std::vector<std::shared_ptr<const JudgedPoint>>& points, std::size_t withdrawn);

    /// Identifiers of alarms.
    struct Closed
    {
        std::vector<std::string> changed;
        std::vector<std::string> removed;
    };

    /// Writes the alarms that have changed; one without details goes.
    Closed close();

private:
    struct Page
    {
        Alarm alarm;
        bool changed = false;
    };

    std::optional<std::string> findToday(const std::string& day) const;
    Page& page(const std::string& alarm);
    std::vector<AlarmDetail> keepKnown(const std::vector<AlarmDetail>& worst,
                                       std::vector<AlarmDetail>& held) const;
    bool write(AlarmDetail& detail, const std::vector<AlarmDepth>& depths);
    void remove(const AlarmDetail& detail);
    void recordWithdrawal(const std::string& alarm, const std::string& name, std::size_t withdrawn,
                          const std::vector<AlarmDetail>& before, const std::vector<AlarmDetail>& after);

    Session& m_session;
    const MonitoredQuantity& m_quantity;
    LocalDays& m_days;
    const Author& m_author;
    std::string m_today;
    std::map<std::string, Page> m_pages;
};

} // namespace monitorservice
