#include "NotifyCommandLine.h"

namespace monitorservice {

void addNotifyOptions(CLI::App& command, NotifyOptions& options)
{
    const char* const group = "Notifications";
    const auto add = [&](const char* name, std::string& value, const char* type, const char* description) {
        command.add_option(name, value, description)->type_name(type)->group(group);
    };
    add("--smtp-url", options.smtpUrl, "URL",
        "Mail server by which alarms are told: smtps://HOST[:PORT] or smtp://HOST[:PORT]");
    add("--smtp-from", options.smtpFrom, "ADDRESS", "Address that the mails come from");
    add("--smtp-credentials-file", options.smtpCredentialsFile, "FILE",
        "USER:PASSWORD in one line, not readable by others; without it there is no login");
    add("--alarm-webhook", options.webhookUrl, "URL",
        "Where alarms are posted as JSON: https://… or http://…");
    add("--alarm-webhook-secret-file", options.webhookSecretFile, "FILE",
        "The secret that these posts are signed with, in one line, not readable by others");
    add("--notify-ca-file", options.caFile, "FILE",
        "Certificates by which both servers are known, instead of the system's");
}

} // namespace monitorservice
