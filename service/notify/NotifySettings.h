#pragma once

#include <optional>
#include <string>

namespace monitorservice {

/// As they stand on the command line; empty when they do not.
struct NotifyOptions
{
    std::string smtpUrl;
    std::string smtpFrom;
    std::string smtpCredentialsFile;
    std::string webhookUrl;
    std::string webhookSecretFile;
    std::string caFile;
};

/// How mails are sent.
struct SmtpSettings
{
    std::string url;
    std::string from;
    std::string user; ///< empty: without login
    std::string password;
    std::string caFile = {}; ///< certificates that are trusted; empty: the system's
    bool isLocal = false;    ///< the server is on this machine
    long answerSeconds = 30; ///< for so long each answer of the server is waited for
};

/// How the webhook is called.
struct WebhookSettings
{
    std::string url;
    std::string secret;
    std::string caFile = {};
};

/// Nothing when no mails are to be sent. Throws std::invalid_argument with a message that names the option
/// and what is wrong with it.
std::optional<SmtpSettings> smtpSettings(const NotifyOptions& options);

/// The same for the webhook.
std::optional<WebhookSettings> webhookSettings(const NotifyOptions& options);

} // namespace monitorservice
