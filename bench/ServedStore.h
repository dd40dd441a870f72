#pragma once

#include "api/Api.h"
#include "http/HttpServer.h"
#include "store/OpenStore.h"

#include <filesystem>
#include <memory>
#include <string>

using CURL = void;
struct curl_slist;

namespace monitorservice::bench {

/// A store in a folder of its own, gone with the object, and a service that answers from it on the loopback
/// through one connection that stays open. Project "p" lies in Vienna and has the categories "Settlement" and
/// "Inclinometer" with the sub-categories "s" and "i"; the bearer may read all of it.
class ServedStore
{
public:
    ServedStore();
    ~ServedStore();
    ServedStore(const ServedStore&) = delete;
    ServedStore& operator=(const ServedStore&) = delete;

    Store& store() { return *m_store; }

    /// The body of the answer to GET projects/p/`list`?`parameters`where=`where`. Throws std::runtime_error
    /// unless the status is 200.
    std::string get(const std::string& list, const std::string& parameters, const std::string& where);

private:
    std::filesystem::path m_folder;
    std::unique_ptr<Store> m_store;
    std::shared_ptr<HttpCounters> m_counters;
    std::unique_ptr<Api> m_api;
    std::unique_ptr<HttpServer> m_server;
    std::unique_ptr<CURL, void (*)(CURL*)> m_curl;
    std::unique_ptr<curl_slist, void (*)(curl_slist*)> m_headers;
};

/// Inserts a monitoring; gives its identifier.
std::string insertMonitoring(Session& session, const std::string& name, const std::string& category);

} // namespace monitorservice::bench
