#pragma once

namespace monitorservice {

/// A way in which people are told of alarms.
enum class Channel
{
    Mail,
    Webhook
};

} // namespace monitorservice
