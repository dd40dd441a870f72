#pragma once

#include "DeliveringClient.h"
#include "api/Api.h"
#include "http/RequestTarget.h"
#include "store/OpenStore.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace monitorservice::test {

/// The service's answers over a data file or a database, within the test's own process and without sockets,
/// so that the disk under it can be the test's.
class StoreRun
{
public:
    explicit StoreRun(const std::string& location)
        : m_store(openStore(location, options())), m_api(*m_store, std::make_shared<HttpCounters>())
    {
    }

    Store& store() const { return *m_store; }
    /// How many of the requests that were sent were answered that they may be carried out or not.
    std::size_t unconfirmed() const { return m_unconfirmed; }

    /// The path is one below the service's, and may have a query.
    HttpResponse call(const Site& site, const std::string& method, const std::string& path,
                      const std::string& body = {}) const
    {
        RequestTarget target = parseRequestTarget("/monitor-service/" + path);
        HttpRequest request;
        request.method = method;
        request.path = std::move(target.path);
        request.parameters = std::move(target.parameters);
        request.authorization = "Bearer " + site.token;
        request.body = body;
        return m_api.answer(request);
    }

    /// What sends requests of a site here.
    DeliveringClient::Send sender(const Site& site) const
    {
        return [this, &site](const std::string& method, const std::string& path, const std::string& body) {
            HttpResponse response = call(site, method, path, body);
            if (response.body.find("has not confirmed") != std::string::npos) {
                ++m_unconfirmed;
            }
            return std::optional(ServiceAnswer{response.status, std::move(response.body)});
        };
    }

    /// Deliveries of all clients at once, each on a thread of its own, until each has one that is not
    /// answered 2xx.
    void deliverUntilRefused(const std::vector<std::unique_ptr<DeliveringClient>>& clients,
                             const Site& site) const
    {
        const std::atomic<bool> isNeverStopped{false};
        std::vector<std::thread> threads;
        for (const auto& client : clients) {
            threads.emplace_back([&, &one = *client] { one.run(sender(site), isNeverStopped); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

private:
    static StoreOptions options()
    {
        StoreOptions options;
        options.createIfMissing = true;
        return options;
    }

    std::unique_ptr<Store> m_store;
    Api m_api;
    mutable std::atomic<std::size_t> m_unconfirmed = 0;
};

} // namespace monitorservice::test
