#include "ServedStore.h"

#include "access/Secret.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"

#include <curl/curl.h>

#include <random>
#include <stdexcept>
#include <system_error>

namespace monitorservice::bench {

namespace {

constexpr const char* token = "rkm_bench";

std::size_t append(char* data, std::size_t size, std::size_t count, void* out)
{
    static_cast<std::string*>(out)->append(data, size * count);
    return size * count;
}

void insertProject(Store& store)
{
    const auto session = store.write();
    session->projects().insert({"p", "Pit", "Europe/Vienna", 1});
    session->categories().add("Settlement");
    session->categories().add("Inclinometer");
    session->documents(DocumentKind::SubCategory)
        .insert("p", "s", toDocument(SubCategory{"s", "p", "Ground", "Settlement", ""}));
    session->documents(DocumentKind::SubCategory)
        .insert("p", "i", toDocument(SubCategory{"i", "p", "Wall", "Inclinometer", ""}));
    session->tokens().insert({"t", "Bench", "", 1, std::nullopt, std::nullopt}, sha256(token));
    session->grants().add({session->newIdentifier(), "t", "p", std::nullopt, Right::Read, 0});
    session->commit();
}

} // namespace

ServedStore::ServedStore()
    : m_folder(std::filesystem::temp_directory_path() /
               ("bench-store-" + std::to_string(std::random_device()()))),
      m_counters(std::make_shared<HttpCounters>()), m_curl(curl_easy_init(), &curl_easy_cleanup),
      m_headers(curl_slist_append(nullptr, (std::string("Authorization: Bearer ") + token).c_str()),
                &curl_slist_free_all)
{
    std::filesystem::create_directories(m_folder);
    StoreOptions options;
    options.createIfMissing = true;
    m_store = openStore((m_folder / "data.db").string(), options);
    insertProject(*m_store);
    m_api = std::make_unique<Api>(*m_store, m_counters);
    m_server = std::make_unique<HttpServer>(
        ListenAddress(), HttpLimits(), [this](HttpRequest&& request) { return m_api->answer(request); },
        m_counters);
    curl_easy_setopt(m_curl.get(), CURLOPT_HTTPHEADER, m_headers.get());
    curl_easy_setopt(m_curl.get(), CURLOPT_WRITEFUNCTION, append);
}

ServedStore::~ServedStore()
{
    m_curl.reset();
    m_server.reset();
    m_api.reset();
    m_store.reset();
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
}

std::string ServedStore::get(const std::string& list, const std::string& parameters, const std::string& where)
{
    const std::unique_ptr<char, void (*)(void*)> encoded(
        curl_easy_escape(m_curl.get(), where.c_str(), static_cast<int>(where.size())), &curl_free);
    const std::string url = "http://127.0.0.1:" + std::to_string(m_server->port()) +
                            "/monitor-service/projects/p/" + list + '?' + parameters +
                            "where=" + encoded.get();
    std::string body;
    long status = 0;
    curl_easy_setopt(m_curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(m_curl.get(), CURLOPT_WRITEDATA, &body);
    const CURLcode result = curl_easy_perform(m_curl.get());
    curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
    if (result != CURLE_OK || status != 200) {
        throw std::runtime_error("the request failed: " + body);
    }
    return body;
}

std::string insertMonitoring(Session& session, const std::string& name, const std::string& category)
{
    std::string id = session.newIdentifier();
    const std::string now = isoText(session.now());
    session.documents(DocumentKind::Cell)
        .insert("p", id,
                JsonObjectWriter()
                    .text("_id", id)
                    .text("projectId", "p")
                    .text("name", name)
                    .text("category", category)
                    .json("alarmTo", R"(["site@example.org"])")
                    .json("links", R"([{"type":"model","rId":"m1"}])")
                    .text("createdAt", now)
                    .text("createdBy", "Bench")
                    .text("updatedAt", now)
                    .text("updatedBy", "Bench")
                    .finish());
    return id;
}

} // namespace monitorservice::bench
