#include "notify/Notifiers.h"

#include "notify/SmtpTransport.h"
#include "notify/WebhookTransport.h"

#include <utility>

namespace monitorservice {

Transports transportsOf(const NotifyOptions& options)
{
    Transports transports;
    if (std::optional<SmtpSettings> smtp = smtpSettings(options)) {
        transports[Channel::Mail] = std::make_unique<SmtpTransport>(std::move(*smtp));
    }
    if (std::optional<WebhookSettings> webhook = webhookSettings(options)) {
        transports[Channel::Webhook] = std::make_unique<WebhookTransport>(std::move(*webhook));
    }
    return transports;
}

std::set<Channel> channelsOf(const Transports& transports)
{
    std::set<Channel> channels;
    for (const auto& [channel, transport] : transports) {
        channels.insert(channel);
    }
    return channels;
}

Notifiers startNotifiers(Store& store, Transports&& transports, const NotifyLog& log)
{
    Notifiers notifiers;
    for (auto& [channel, transport] : transports) {
        Dispatcher dispatcher(store, channel, std::move(transport), log);
        notifiers.push_back(std::make_unique<Notifier>(std::move(dispatcher), log));
    }
    return notifiers;
}

} // namespace monitorservice
