#include "notify/SmtpTransport.h"

#include "notify/CurlTransfer.h"
#include "notify/MailAddress.h"
#include "notify/MailText.h"

#include <utility>

namespace monitorservice {

namespace {

curl_usessl encryptionFor(const SmtpSettings& settings)
{
    if (settings.isLocal) {
        return CURLUSESSL_NONE;
    }
    return settings.user.empty() ? CURLUSESSL_TRY : CURLUSESSL_ALL;
}

} // namespace

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
    transfer.set(CURLOPT_USE_SSL, static_cast<long>(encryptionFor(m_settings)));
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
