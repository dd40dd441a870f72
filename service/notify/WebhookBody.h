#pragma once

#include "notify/Notification.h"

#include <string>

namespace monitorservice {

/// What is posted to the webhook: one JSON object with the alarm, and its points with their details, as the
/// resources of alarms answer them.
std::string webhookBody(const Notification& notification);

} // namespace monitorservice
