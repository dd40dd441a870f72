#pragma once

#include "domain/DataManage.h"
#include "domain/MonitoredQuantity.h"
#include "domain/Stamp.h"
#include "store/Session.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace monitorservice {

/// What tells a delivery from the others of its data manage.
struct DeliveryMark
{
    std::int64_t number = 0; ///< 1 is the first one
    std::string history;     ///< identifier of its entry in the history
};

/// What one delivery brought of one quantity.
struct DeliveryShare
{
    std::size_t rows = 0;            ///< samples delivered
    std::int64_t inserted = 0;       ///< samples that were not held before
    std::int64_t corrected = 0;      ///< samples that were held with another value or flag
    std::string fileId;              ///< may be empty
    bool changed = false;            ///< anything is different from before
    std::optional<Instant> lastTime; ///< of the latest sample of the points delivered
    std::string lastDate;            ///< the same as text; empty when there is none
};

/// The data manage of a monitoring and sub-category; nothing while nothing was delivered for them.
std::optional<DataManage> findDataManage(const Session& session, const MonitoredQuantity& quantity);

/// Notes a delivery that has changed something: in the data manage of the quantity, which is made when there
/// is none, and by one more entry of its history.
class DeliveryRecord
{
public:
    /// All of it must outlive the record.
    DeliveryRecord(Session& session, const MonitoredQuantity& quantity, const Author& author);

    /// Tells the store that a record of the quantity is about to be made.
    static void expect(const Session& session, const MonitoredQuantity& quantity);

    /// Under which it will be noted.
    const DeliveryMark& mark() const { return m_mark; }

    void write(const DeliveryShare& share);

private:
    Session& m_session;
    const MonitoredQuantity& m_quantity;
    const Author& m_author;
    std::optional<DataManage> m_found;
    DeliveryMark m_mark;
};

/// Notes in the data manage that so many samples are held no more.
void noteRemoved(Session& session, const MonitoredQuantity& quantity, std::int64_t removed,
                 const Author& author);

/// Takes the entry of the latest delivery out of the history, and notes the delivery before it in the data
/// manage, with so many samples held no more. When there was none before, the data manage goes.
void takeBackRecord(Session& session, DataManage dataManage, const std::string& history, std::int64_t removed,
                    const Author& author);

} // namespace monitorservice
