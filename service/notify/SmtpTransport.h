#pragma once

#include "notify/NotifySettings.h"
#include "notify/Transport.h"

namespace monitorservice {

/// Sends mails by a mail server. With smtps:// TLS is spoken from the beginning; with smtp:// as soon as the
/// server offers it, and no password is sent to one that does not. Nobody listens between this service and
/// a server on the same machine, whose certificate is seldom one to be trusted: with smtp:// it is spoken to
/// without TLS.
class SmtpTransport final : public Transport
{
public:
    explicit SmtpTransport(SmtpSettings settings);

    bool reaches(const std::string& recipient) const override;
    SendResult send(const Notification& notification, const std::atomic<bool>& stop) override;

private:
    SmtpSettings m_settings;
};

} // namespace monitorservice
