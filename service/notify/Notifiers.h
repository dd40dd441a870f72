#pragma once

#include "notify/Notifier.h"
#include "notify/NotifySettings.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace monitorservice {

using Transports = std::map<Channel, std::unique_ptr<Transport>>;
using Notifiers = std::vector<std::unique_ptr<Notifier>>;

/// The ways to tell people that the options name; none of them when they name none. Throws
/// std::invalid_argument as smtpSettings() does.
Transports transportsOf(const NotifyOptions& options);

/// As StoreOptions takes them.
std::set<Channel> channelsOf(const Transports& transports);

/// Begins to send what is due by each of them. The store outlives the notifiers.
Notifiers startNotifiers(Store& store, Transports&& transports, const NotifyLog& log);

} // namespace monitorservice
