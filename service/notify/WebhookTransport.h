#pragma once

#include "notify/NotifySettings.h"
#include "notify/Transport.h"

namespace monitorservice {

/// Posts JSON to an address, with its time and a signature of both:
///
///     X-Monitor-Timestamp: 1450679400
///     X-Monitor-Signature: sha256=HEXADECIMAL
///
/// Accepted is an answer 2xx; redirections are not followed.
class WebhookTransport final : public Transport
{
public:
    explicit WebhookTransport(WebhookSettings settings);

    bool reaches(const std::string& /*recipient*/) const override { return true; }
    SendResult send(const Notification& notification, const std::atomic<bool>& stop) override;

private:
    WebhookSettings m_settings;
};

} // namespace monitorservice
