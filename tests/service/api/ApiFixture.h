#pragma once

#include "access/Secret.h"
#include "api/Api.h"
#include "domain/SubCategory.h"
#include "service/http/RawClient.h"
#include "store/OpenStore.h"
#include "support/TestStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

/// The text as the value of a query's parameter.
inline std::string percentEncoded(std::string_view text)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        encoded += '%';
        encoded += digits[byte >> 4U];
        encoded += digits[byte & 0x0fU];
    }
    return encoded;
}

inline std::string requestText(const std::string& method, const std::string& target,
                               const std::string& authorization, const std::string& body)
{
    std::string text = method + " " + target + " HTTP/1.1\r\nHost: localhost\r\n";
    if (!authorization.empty()) {
        text += "Authorization: " + authorization + "\r\n";
    }
    if (!body.empty() || method == "POST" || method == "PUT") {
        text += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    }
    return text + "\r\n" + body;
}

/// A member of an object as JSON text, a text without its quotes.
inline std::string member(const std::string& json, std::string_view name)
{
    simdjson::dom::parser parser;
    simdjson::dom::element value = parser.parse(json)[name];
    return value.is_string() ? std::string(value.get_string().value()) : simdjson::minify(value);
}

/// One member of every object of an array.
inline std::vector<std::string> membersOf(const std::string& json, std::string_view name)
{
    std::vector<std::string> values;
    simdjson::dom::parser parser;
    const simdjson::dom::array objects = parser.parse(json);
    for (const simdjson::dom::element object : objects) {
        values.emplace_back(object[name].get_string().value());
    }
    return values;
}

/// The service on a free port over a store in a folder of its own: projects "p1" and "p2", categories
/// Settlement and Inclinometer, and the editor of everything in p1.
class ApiFixture : public ::testing::Test
{
protected:
    ApiFixture()
        : counters(std::make_shared<HttpCounters>()), api(store, counters),
          server(
              ListenAddress(), HttpLimits(), [this](HttpRequest&& request) { return api.answer(request); },
              counters)
    {
        write([](Session& session) {
            session.projects().insert({"p1", "Pit", "UTC", 1});
            session.projects().insert({"p2", "Slope", "UTC", 1});
            session.categories().add("Settlement");
            session.categories().add("Inclinometer");
        });
        editor = newToken("Ada Editor");
        grant(editor, "p1", std::nullopt, Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete);
    }

    template <typename Action>
    void write(Action&& action)
    {
        const auto session = store.write();
        action(*session);
        session->commit();
    }

    /// The text of the token is "rkm_" and its owner, the identifier the owner.
    std::string newToken(const std::string& owner, std::optional<Instant> expires = std::nullopt)
    {
        std::string text = "rkm_" + owner;
        write([&](Session& session) {
            session.tokens().insert({owner, owner, "", session.now(), expires, std::nullopt}, sha256(text));
        });
        return text;
    }

    /// Without a project it is one of the whole service.
    std::string grant(const std::string& token, const std::optional<std::string>& project,
                      const std::optional<std::string>& category, Rights rights)
    {
        std::string id;
        write([&](Session& session) {
            id = session.grants().add(
                {session.newIdentifier(), token.substr(4), project, category, rights, 0});
        });
        return id;
    }

    std::string newAdministrator(const std::string& owner)
    {
        std::string text = newToken(owner);
        grant(text, std::nullopt, std::nullopt, Right::Administer);
        return text;
    }

    /// The latest entry of the audit trail, of whatever project.
    std::string latestEntry()
    {
        std::string latest;
        DocumentQuery query;
        query.everyProject = true;
        store.read()->documents(DocumentKind::Change).visit(query, [&latest](std::string_view entry) {
            latest = entry;
        });
        return latest;
    }

    RawAnswer call(const std::string& token, const std::string& method, const std::string& path,
                   const std::string& body = {}) const
    {
        RawClient client(server.port());
        client.send(
            requestText(method, "/monitor-service/" + path, token.empty() ? token : "Bearer " + token, body));
        RawAnswer answer = client.readAnswer();
        if (answer.status >= 400) {
            EXPECT_EQ(member(answer.body, "status"), std::to_string(answer.status)) << answer.body;
            EXPECT_NE(member(answer.body, "message"), "") << answer.body;
        }
        return answer;
    }
    RawAnswer get(const std::string& path) const { return call(editor, "GET", path); }

    /// The status and the message of a refusal.
    static std::string refusal(const RawAnswer& answer)
    {
        return std::to_string(answer.status) + " " + member(answer.body, "message");
    }

    /// The identifier of a new monitoring.
    std::string newCell(const std::string& name, const std::string& category = "Settlement",
                        const std::string& more = {}) const
    {
        const RawAnswer answer =
            call(editor, "POST", "cells",
                 R"({"projectId":"p1","name":")" + name + R"(","category":")" + category + "\"" + more + "}");
        EXPECT_EQ(answer.status, 201U) << answer.body;
        return member(answer.body, "_id");
    }

private:
    StoreOptions options()
    {
        StoreOptions options;
        options.createIfMissing = true;
        // However slow the machine is, nobody who waits for a turn is sent away.
        options.patience = std::chrono::minutes(1);
        options.clock = [this] {
            return now.load();
        };
        return options;
    }

protected:
    std::atomic<Instant> now{1450679400123}; ///< 2015-12-21T06:30:00.123Z
    TestStore testStore;
    std::unique_ptr<Store> opened{openStore(testStore.location(), options())};
    Store& store = *opened;
    std::shared_ptr<HttpCounters> counters;
    Api api;
    HttpServer server;
    std::string editor;
};

} // namespace monitorservice::test
