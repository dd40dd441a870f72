#include "notify/SmtpTransport.h"

#include "notify/CurlTransfer.h"
#include "notify/MailAddress.h"
#include "notify/MailText.h"

#include <utility>

namespace monitorservice {

SmtpTransport::SmtpTransport(SmtpSettings settings) : m_settings(std::move(settings))
{
    prepareCurl();
}

bool SmtpTransport::reaches(const std::string& recipient) const
{
    return isMailAddress(recipient);
}

SendResult SmtpTransport::send(const Notification& notification, const std::atomic<bool>& stop)
{
    const std::string mail = mailOf(notification, m_settings.from);
    CurlList recipients;
    recipients.add('<' + notification.recipient + '>');
    CurlTransfer transfer(m_settings.url, m_settings.caFile, stop);
    const bool mustEncrypt = !m_settings.user.empty() && !m_settings.isLocal;
    transfer.set(CURLOPT_USE_SSL, static_cast<long>(mustEncrypt ? CURLUSESSL_ALL : CURLUSESSL_TRY));
    transfer.set(CURLOPT_MAIL_FROM, ('<' + m_settings.from + '>').c_str());
    transfer.set(CURLOPT_MAIL_RCPT, recipients.get());
    if (!m_settings.user.empty()) {
        transfer.set(CURLOPT_USERNAME, m_settings.user.c_str());
        transfer.set(CURLOPT_PASSWORD, m_settings.password.c_str());
    }
    transfer.set(CURLOPT_SERVER_RESPONSE_TIMEOUT, m_settings.answerSeconds);
    transfer.setUpload(mail);
    return transfer.run();
}

} // namespace monitorservice
