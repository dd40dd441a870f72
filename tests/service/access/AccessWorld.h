#pragma once

#include "domain/SubCategory.h"
#include "http/RefusedRequest.h"
#include "http/RequestTarget.h"
#include "service/api/ApiFixture.h"
#include "store/CountingStore.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "support/TestStore.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

/// Whether the tests were asked to take their time.
inline bool isLongRun()
{
    const char* const value = std::getenv("RK_TEST_LONG");
    return value != nullptr && std::string_view(value) == "1";
}

/// What is granted per project and category, and what is not stored at all. Whatever a place holds bears its
/// word.
struct Place
{
    std::string word;
    std::string project;
    std::string category;
    double value; ///< of its first sample; no other place has values near it

    /// How the value begins wherever it is written, point included: no identifier or time holds that.
    std::string valueText() const { return std::to_string(value).substr(0, 5); }
};

inline const Place own{"Amber", "project-own", "Settlement", 7111.25};
inline const Place beside{"Birch", "project-own", "Inclinometer", 7222.5};
inline const Place far{"Cobalt", "project-far", "Settlement", 7333.75};
inline const Place nowhere{"Nowhere", "project-none", "Settlement", 0};
inline const std::array<const Place*, 3> places{&own, &beside, &far};

/// Identifiers by kind, named as the paths name them: "cells", "groupSettings"…
using Identifiers = std::map<std::string, std::vector<std::string>>;

/// Data to be copied: besides Settlement and Inclinometer the category Spare, which nothing is of, and
/// each place has monitorings, a sub-category, points with and without depths,
/// samples, a group with what the audit trail tells of it, a delivery with its history, and the alarm that
/// it raised.
class AccessWorld
{
public:
    static constexpr const char* admin = "rkm_admin";

    AccessWorld()
    {
        StoreOptions options;
        options.createIfMissing = true;
        const std::unique_ptr<Store> opened = openStore(m_data.location(), options);
        Store& store = *opened;
        const Api api(store, std::make_shared<HttpCounters>());
        m_api = &api;
        write(store, [](Session& session) {
            session.projects().insert({own.project, "Own pit", "Europe/Vienna", 1});
            session.projects().insert({far.project, "Far slope", "UTC", 1});
            session.categories().add(own.category);
            session.categories().add(beside.category);
            session.categories().add("Spare");
        });
        constexpr Rights all = Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete;
        addToken(store, "admin", {{own.project, std::nullopt, all}, {far.project, std::nullopt, all}});
        // Those that must not show come before and behind those that may.
        for (const Place* const place : {&beside, &own, &far}) {
            fill(store, *place);
        }
        m_api = nullptr;
    }

    const TestStore& data() const { return m_data; }

    /// What the place has; what is nowhere has one identifier of each kind that nothing has.
    const Identifiers& in(const Place& place) const { return m_identifiers.at(place.word); }

    struct GrantOf
    {
        std::optional<std::string> project;
        std::optional<std::string> category;
        Rights rights;
    };

    /// The token's text is "rkm_" and its name.
    static void addToken(Store& store, const std::string& name, const std::vector<GrantOf>& grants)
    {
        write(store, [&](Session& session) {
            session.tokens().insert({name, name, "", 1, std::nullopt, std::nullopt}, sha256("rkm_" + name));
            for (const GrantOf& grant : grants) {
                if (!grant.rights.empty()) {
                    session.grants().add(
                        {session.newIdentifier(), name, grant.project, grant.category, grant.rights, 0});
                }
            }
        });
    }

    template <typename Action>
    static void write(Store& store, Action&& action)
    {
        const auto session = store.write();
        action(*session);
        session->commit();
    }

private:
    std::string ask(const std::string& method, std::vector<std::string> path,
                    const std::string& body = {}) const
    {
        HttpRequest request;
        request.method = method;
        request.path = std::move(path);
        request.path.insert(request.path.begin(), "monitor-service");
        request.authorization = std::string("Bearer ") + admin;
        request.body = body;
        HttpResponse response = m_api->answer(request);
        if (response.status >= 300) {
            throw std::runtime_error(method + ' ' + body + ": " + response.body);
        }
        return response.body;
    }

    std::vector<std::string> listed(std::vector<std::string> path, const std::string& cell = {}) const
    {
        std::vector<std::string> ids;
        simdjson::dom::parser parser;
        const simdjson::dom::array documents = parser.parse(ask("GET", std::move(path)));
        for (const simdjson::dom::element document : documents) {
            if (cell.empty() || std::string_view(document["cellId"]) == cell) {
                ids.emplace_back(document["_id"].get_string().value());
            }
        }
        return ids;
    }

    static std::string point(const Place& place, const std::string& cell, const std::string& name,
                             const std::string& depth, double value)
    {
        const std::string flag = place.word + "Flag";
        return R"({"cellId":")" + cell + R"(","subCategoryId":")" + place.word + R"(Ground","name":")" +
               name + R"(","alias":")" + place.word + R"(Alias","depth":")" + depth +
               R"(","initialValue":1,"fileId":")" + place.word + R"(.csv","links":[{"type":"model","rId":")" +
               place.word + R"(Model"}],"data":[{"count":1,"time":"2015-12-21T06:30:00Z","value":)" +
               std::to_string(value) + R"(,"timeFlag":")" + flag +
               R"("},{"count":2,"time":"2015-12-22T06:30:00Z","value":)" + std::to_string(value + 1) +
               R"(,"timeFlag":")" + flag + "\"}]}";
    }

    std::string newCell(const Place& place, const std::string& name) const
    {
        return member(ask("POST", {"cells"},
                          R"({"projectId":")" + place.project + R"(","name":")" + place.word + name +
                              R"(","category":")" + place.category + R"(","links":[{"type":"model","rId":")" +
                              place.word + R"("}]})"),
                      "_id");
    }

    void fill(Store& store, const Place& place)
    {
        Identifiers& ids = m_identifiers[place.word];
        const SubCategory ground{place.word + "Ground", place.project, place.word + " ground", place.category,
                                 place.word + "GL"};
        write(store, [&](Session& session) {
            session.documents(DocumentKind::SubCategory).insert(place.project, ground.id, toDocument(ground));
        });
        ids["subCategories"] = {ground.id};
        ids["cells"] = {newCell(place, " tower"), newCell(place, " spare")};
        const std::string cell = ids["cells"].front();
        ids["groupSettings"] = {member(ask("POST", {"groupSettings"},
                                           R"({"projectId":")" + place.project + R"(","cellId":")" + cell +
                                               R"(","subCategoryId":")" + ground.id + R"(","groupName":")" +
                                               place.word + R"( group","groupPoint":[")" + place.word +
                                               R"(P1",")" + place.word + R"(I1"],"totalVar":10})"),
                                       "_id")};
        ask("POST", {"pointLocations"},
            "[" + point(place, cell, place.word + "P1", "", place.value) + "," +
                point(place, cell, place.word + "I1", "1", place.value + 2) + "," +
                point(place, cell, place.word + "I1", "2", place.value + 4) + "]");
        ids["pointLocations"] = listed({"projects", place.project, "pointLocations"}, cell);
        ids["dataManages"] = listed({"projects", place.project, "dataManages"}, cell);
        for (const std::string& one : ids["cells"]) {
            for (std::string& id : listed({"projects", place.project, "changes"}, one)) {
                ids["changes"].push_back(std::move(id));
            }
        }
        ids["historyDatas"] = listed({"dataManages", ids["dataManages"].front(), "historyDatas"});
        ids["alarmManages"] = listed({"projects", place.project, "alarmManages"}, cell);
        ids["alarmDetails"] = listed({"alarmManages", ids["alarmManages"].front(), "alarmDetails"});
        // By name: that of the inclinometer comes first and alone has values at depths.
        ids["threeDetails"] = listed({"alarmDetails", ids["alarmDetails"].front(), "threeDetails"});
        for (const auto& [kind, present] : ids) {
            m_identifiers[nowhere.word][kind] = {"0123456789abcdef01234567", "0123456789abcdef01234568"};
        }
    }

    TestStore m_data;
    std::map<std::string, Identifiers> m_identifiers;
    const Api* m_api = nullptr;
};

/// A service over a copy of a world's data; the copy goes with it.
class ServedWorld
{
public:
    explicit ServedWorld(const AccessWorld& world) : ServedWorld(world.data(), StoreOptions()) {}
    /// A service over a copy of the data.
    ServedWorld(const TestStore& data, const StoreOptions& options)
        : m_copy(data), store(openStore(m_copy.location(), options)),
          counters(std::make_shared<HttpCounters>()), api(store, counters),
          server(
              ListenAddress(), HttpLimits(), [this](HttpRequest&& request) { return api.answer(request); },
              counters),
          m_client(std::make_unique<RawClient>(server.port()))
    {
    }
    ~ServedWorld()
    {
        server.stop();
        server.join();
    }
    ServedWorld(const ServedWorld&) = delete;
    ServedWorld& operator=(const ServedWorld&) = delete;

    /// Asks the service without a connection: what HttpServer would make of the request and of the answer is
    /// made here.
    RawAnswer askDirectly(const std::string& token, const std::string& method, const std::string& target,
                          const std::string& body = {}) const
    {
        RequestTarget parsed = parseRequestTarget("/monitor-service/" + target);
        HttpRequest request;
        request.method = method;
        request.path = std::move(parsed.path);
        request.parameters = std::move(parsed.parameters);
        request.authorization = "Bearer " + token;
        request.body = body;
        HttpResponse response = api.answer(request);
        RawAnswer answer;
        answer.status = response.status;
        answer.body = std::move(response.body);
        return answer;
    }

    /// Asks on a connection that is kept. The target goes behind "/monitor-service/", the fields end with CR
    /// LF.
    RawAnswer ask(const std::string& token, const std::string& method, const std::string& target,
                  const std::string& body = {}, const std::string& fields = {})
    {
        std::string text = requestText(method, "/monitor-service/" + target,
                                       token.empty() ? token : "Bearer " + token, body);
        text.insert(text.find("\r\n") + 2, fields);
        return askRaw(text, method != "HEAD");
    }

    RawAnswer askRaw(const std::string& bytes, bool hasBody = true)
    {
        m_client->send(bytes);
        RawAnswer answer = m_client->readAnswer(hasBody);
        const auto connection = answer.fields.find("connection");
        if (connection != answer.fields.end() && connection->second == "close") {
            m_client = std::make_unique<RawClient>(server.port());
        }
        return answer;
    }

    /// Every line of what clients write, sorted.
    std::vector<std::string> rows()
    {
        std::vector<std::string> rows = contentsOf(store);
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    /// Whether nothing was committed since there were so many commits, or nothing that changed these rows.
    bool isUnchanged(int commits, const std::vector<std::string>& before)
    {
        return store.commits() == commits || rows() == before;
    }

private:
    TestStore m_copy;

public:
    CountingStore store;
    std::shared_ptr<HttpCounters> counters;
    Api api;
    HttpServer server;

private:
    std::unique_ptr<RawClient> m_client;
};

} // namespace monitorservice::test
