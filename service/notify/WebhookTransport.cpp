#include "notify/WebhookTransport.h"

#include "notify/CurlTransfer.h"
#include "notify/Signature.h"
#include "notify/WebhookBody.h"

#include <utility>

namespace monitorservice {

WebhookTransport::WebhookTransport(WebhookSettings settings) : m_settings(std::move(settings))
{
    prepareCurl();
}

SendResult WebhookTransport::send(const Notification& notification, const std::atomic<bool>& stop)
{
    constexpr Instant millisecondsPerSecond = 1000;
    const std::string body = webhookBody(notification);
    const std::string timestamp = std::to_string(notification.writtenAt / millisecondsPerSecond);
    CurlList headers;
    headers.add("Content-Type: application/json");
    headers.add("Expect:"); // not asked for: a second round trip
    headers.add("X-Monitor-Timestamp: " + timestamp);
    headers.add("X-Monitor-Signature: sha256=" + signatureOf(m_settings.secret, timestamp, body));
    CurlTransfer transfer(m_settings.url, m_settings.caFile, stop);
    transfer.set(CURLOPT_HTTPHEADER, headers.get());
    transfer.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    transfer.set(CURLOPT_POSTFIELDS, body.c_str());
    transfer.set(CURLOPT_FAILONERROR, 1L);
    const SendResult result = transfer.run();
    // A redirection is no failure to libcurl.
    constexpr long firstRedirection = 300;
    if (result.outcome == SendResult::Outcome::Accepted && transfer.status() >= firstRedirection) {
        return {SendResult::Outcome::Failed, "the answer is " + std::to_string(transfer.status())};
    }
    return result;
}

} // namespace monitorservice
