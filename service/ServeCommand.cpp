#include "ServeCommand.h"

#include "NotifyCommandLine.h"
#include "admin/StoreCommandLine.h"
#include "api/Api.h"
#include "http/HttpServer.h"
#include "http/ListenAddress.h"
#include "notify/Notifiers.h"
#include "store/OpenStore.h"

#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

namespace monitorservice {

namespace {

struct ServeSettings
{
    StoreOnCommandLine store;
    std::string listen = "127.0.0.1:8600";
    bool log = false;
    NotifyOptions notify;
};

bool isLoopback(const std::string& host)
{
    return host == "::1" || host.rfind("127.", 0) == 0;
}

std::string orDash(const std::string& text)
{
    return text.empty() ? "-" : text;
}

// One line for each request; the query is left out, as its values are nobody else's business. Tokens are told
// by their identifiers.
HttpHandler logged(HttpHandler handler)
{
    return [handler = std::move(handler)](HttpRequest&& request) {
        const std::string address = orDash(request.address);
        const std::string what = request.method + ' ' + request.target.substr(0, request.target.find('?'));
        const auto begin = std::chrono::steady_clock::now();
        HttpResponse response = handler(std::move(request));
        const auto taken = std::chrono::steady_clock::now() - begin;
        const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(taken).count();
        std::cerr << isoText(systemNow()) + ' ' + address + ' ' + orDash(response.caller) + ' ' + what + ' ' +
                         std::to_string(response.status) + ' ' + std::to_string(response.body.size()) +
                         " B " + std::to_string(microseconds) + " us\n";
        return response;
    };
}

std::unique_ptr<Store> openStoreOfService(const std::string& location, const std::set<Channel>& channels)
{
    if (!storeExists(location)) {
        std::cerr << "monitor-service: " << nameOfStore(location) << " holds no data yet; they are made\n";
    }
    StoreOptions options;
    options.createIfMissing = true;
    options.forService = true;
    // The largest delivery holds the turn for seconds. Whoever waits longer than this, and the 10 s before
    // that for a thread, is told to come again, before the client library gives up at 30 s without knowing
    // what became of the request.
    options.patience = std::chrono::seconds(15);
    options.channels = channels;
    return openStore(location, options);
}

void logNotification(const std::string& line)
{
    std::cerr << "monitor-service: " + line + '\n';
}

// A file that may not grow any more and a log that nobody reads are errors to be answered and gone on after;
// by default they end the process.
void ignoreSignalsOfWrites()
{
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

void serve(const ServeSettings& settings)
{
    ignoreSignalsOfWrites();
    const ListenAddress address = parseListenAddress(settings.listen);
    if (!isLoopback(address.host)) {
        std::cerr << "monitor-service: warning: " << address.host
                  << " can be reached from other machines, and tokens travel unencrypted; put a proxy with "
                     "TLS before it\n";
    }
    Transports transports = transportsOf(settings.notify);
    if (transports.empty()) {
        std::cerr << "monitor-service: alarms are only stored: nobody is told of them without --smtp-url or "
                     "--alarm-webhook\n";
    }
    const std::unique_ptr<Store> store =
        openStoreOfService(locationOf(settings.store), channelsOf(transports));
    const auto counters = std::make_shared<HttpCounters>();
    const Api api(*store, counters);
    HttpHandler handler = [&api](HttpRequest&& request) {
        return api.answer(request);
    };
    HttpServer server(address, HttpLimits(), settings.log ? logged(std::move(handler)) : std::move(handler),
                      counters);
    server.stopOnSignal();
    const Notifiers notifiers = startNotifiers(*store, std::move(transports), logNotification);
    const ListenAddress listening{address.host, server.port()};
    std::cout << "monitor-service listening on http://" << toText(listening) << "/" << std::endl;
    server.runUntilSignal();
}

} // namespace

void addServeCommand(CLI::App& application)
{
    CLI::App* const command = application.add_subcommand("serve", "Answer requests until SIGTERM or SIGINT");
    const auto settings = std::make_shared<ServeSettings>();
    addStoreOptions(*command, settings->store);
    command->add_option("--listen", settings->listen, "IP address and port; port 0 is any free one")
        ->capture_default_str()
        ->type_name("ADDRESS:PORT");
    addNotifyOptions(*command, settings->notify);
    command->add_flag("--log", settings->log, "A line for each request on the standard error");
    command->footer(std::string(R"(
Data that are not there yet are made. Prints "monitor-service listening on http://127.0.0.1:PORT/" when it is ready.

Examples:
  monitor-service serve --data site.db
  monitor-service serve --data site.db --listen 127.0.0.1:0 --log
  monitor-service serve --data site.db --smtp-url smtps://mail.example.org --smtp-from alarms@example.org \
    --smtp-credentials-file mail.secret
  monitor-service serve --store-url-file site.url --listen 127.0.0.1:0

)") + storeEnvironment);
    command->callback([settings] { serve(*settings); });
}

} // namespace monitorservice
