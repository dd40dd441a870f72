#pragma once

#include "domain/Alarm.h"
#include "notify/News.h"
#include "store/Session.h"

#include <optional>
#include <string>

namespace monitorservice {

/// All that a message to one recipient is made from.
struct Notification
{
    std::string recipient;
    std::string project;     ///< its name
    std::string subCategory; ///< its name
    Alarm alarm;
    News news;
    Instant writtenAt = 0;
    /// The same for the same recipient, alarm and news, so that whoever gets a message twice can tell.
    std::string id;
};

/// Reads what is new to the recipient of the notice; nothing when the alarm is gone, or the recipient is not
/// among those of its monitoring any more. Throws StoreError and DamagedDocument.
std::optional<Notification> notificationOf(const Session& session, const Notice& notice);

} // namespace monitorservice
