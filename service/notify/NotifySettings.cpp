#include "notify/NotifySettings.h"

#include "access/SecretFile.h"
#include "notify/MailAddress.h"

#include <curl/curl.h>

#include <fstream>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <utility>

namespace monitorservice {

namespace {

// Parts of a URL as libcurl reads them, so that what is checked is what is used.
class ParsedUrl
{
public:
    ParsedUrl(const std::string& option, const std::string& url) : m_url(curl_url())
    {
        const CURLUcode code =
            curl_url_set(m_url.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME);
        if (code != CURLUE_OK) {
            throw std::invalid_argument(option + ": \"" + url + "\" is no URL: " + curl_url_strerror(code));
        }
    }

    /// Empty when the URL has none.
    std::string part(CURLUPart part) const
    {
        char* text = nullptr;
        if (curl_url_get(m_url.get(), part, &text, 0) != CURLUE_OK) {
            return {};
        }
        const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
        return text;
    }

private:
    struct Cleanup
    {
        void operator()(CURLU* url) const { curl_url_cleanup(url); }
    };

    std::unique_ptr<CURLU, Cleanup> m_url;
};

ParsedUrl checkedUrl(const std::string& option, const std::string& url, const std::string& scheme)
{
    ParsedUrl parsed(option, url);
    const std::string found = parsed.part(CURLUPART_SCHEME);
    if (found != scheme && found != scheme + 's') {
        throw std::invalid_argument(option + ": \"" + found + "\" is neither " + scheme + " nor " + scheme +
                                    's');
    }
    if (!parsed.part(CURLUPART_USER).empty() || !parsed.part(CURLUPART_PASSWORD).empty()) {
        // Without the URL: everybody who reads the message would know it.
        throw std::invalid_argument(option + " has a user or a password, which every user of the machine " +
                                    "can read there; they belong into a file");
    }
    return parsed;
}

void refuseWithout(const std::string& needed,
                   std::initializer_list<std::pair<const char*, const std::string*>> options)
{
    for (const auto& [name, value] : options) {
        if (!value->empty()) {
            throw std::invalid_argument(name + (" says nothing without " + needed));
        }
    }
}

// "user:password"
void readCredentials(const std::string& file, SmtpSettings& settings)
{
    const std::string option = "--smtp-credentials-file";
    const std::string line = readSecretFile(option, file);
    const std::size_t colon = line.find(':');
    if (colon == 0 || colon == std::string::npos || colon + 1 == line.size()) {
        throw std::invalid_argument(option + ": " + file + " does not hold USER:PASSWORD in one line");
    }
    settings.user = line.substr(0, colon);
    settings.password = line.substr(colon + 1);
}

std::string checkedCaFile(const std::string& file)
{
    if (!file.empty() && !std::ifstream(file)) {
        throw std::invalid_argument("--notify-ca-file: " + file + " cannot be read");
    }
    return file;
}

} // namespace

std::optional<SmtpSettings> smtpSettings(const NotifyOptions& options)
{
    if (options.smtpUrl.empty()) {
        refuseWithout("--smtp-url", {{"--smtp-from", &options.smtpFrom},
                                     {"--smtp-credentials-file", &options.smtpCredentialsFile}});
        return std::nullopt;
    }
    const ParsedUrl url = checkedUrl("--smtp-url", options.smtpUrl, "smtp");
    const std::string path = url.part(CURLUPART_PATH);
    if (!path.empty() && path != "/") {
        throw std::invalid_argument("--smtp-url has a path, \"" + path + "\", which a mail server has not");
    }
    if (options.smtpFrom.empty()) {
        throw std::invalid_argument("--smtp-url needs --smtp-from, the address that mails come from");
    }
    if (!isMailAddress(options.smtpFrom)) {
        throw std::invalid_argument("--smtp-from: \"" + options.smtpFrom + "\" is no mail address");
    }
    SmtpSettings settings{options.smtpUrl, options.smtpFrom, {}, {}, checkedCaFile(options.caFile)};
    const std::string host = url.part(CURLUPART_HOST);
    settings.isLocal = host == "localhost" || host == "[::1]" || host.rfind("127.", 0) == 0;
    if (!options.smtpCredentialsFile.empty()) {
        readCredentials(options.smtpCredentialsFile, settings);
    }
    return settings;
}

std::optional<WebhookSettings> webhookSettings(const NotifyOptions& options)
{
    if (options.webhookUrl.empty()) {
        refuseWithout("--alarm-webhook", {{"--alarm-webhook-secret-file", &options.webhookSecretFile}});
        return std::nullopt;
    }
    checkedUrl("--alarm-webhook", options.webhookUrl, "http");
    if (options.webhookSecretFile.empty()) {
        throw std::invalid_argument("--alarm-webhook needs --alarm-webhook-secret-file, the secret that "
                                    "messages are signed with");
    }
    return WebhookSettings{options.webhookUrl,
                           readSecretFile("--alarm-webhook-secret-file", options.webhookSecretFile),
                           checkedCaFile(options.caFile)};
}

} // namespace monitorservice
