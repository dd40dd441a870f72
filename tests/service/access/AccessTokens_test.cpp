#include "AccessRules.h"
#include "api/Authentication.h"
#include "service/admin/ServiceProcess.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

namespace monitorservice::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const Role ownOnly{"", "rced", "", ""};

std::string hexadecimal(const std::string& bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte >> 4U];
        text += digits[byte & 0x0fU];
    }
    return text;
}

// Makes texts that are near a token, and never the token.
class Mutations
{
public:
    explicit Mutations(std::string token) : m_token(std::move(token)) {}

    std::string next()
    {
        for (;;) {
            std::string text = mutated(m_random() % 10);
            // Blanks before a token belong to the field's syntax.
            if (text.substr(std::min(text.find_first_not_of(' '), text.size())) != m_token) {
                return text;
            }
        }
    }

private:
    std::size_t below(std::size_t size) { return m_random() % size; }

    std::string mutated(std::size_t kind)
    {
        std::string text = m_token;
        const std::size_t at = below(text.size());
        switch (kind) {
        case 0: // one or more bits
            for (std::size_t bits = 1 + below(3); bits > 0; --bits) {
                char& character = text[below(text.size())];
                character = static_cast<char>(character ^ (1U << below(8)));
            }
            return text;
        case 1:
            return text.substr(0, at);
        case 2:
            return text.substr(at);
        case 3:
            return text + std::string(1 + below(64), static_cast<char>(below(256)));
        case 4:
            return std::string(1 + below(8), static_cast<char>(below(256))) + text;
        case 5:
            text[at] = static_cast<char>(text[at] ^ 0x20U);
            return text;
        case 6:
            return text.insert(at, 1, " \t\r\n\0%+_-"[below(9)]);
        case 7: {
            const std::string hash = sha256(m_token);
            const std::string forms[] = {hash, hexadecimal(hash), "rkm_" + hexadecimal(hash),
                                         "x'" + hexadecimal(hash) + "'", sha256(hash)};
            return forms[below(5)];
        }
        case 8:
            return text + ' ' + text;
        default:
            std::swap(text[at], text[below(text.size())]);
            return text;
        }
    }

    std::string m_token;
    std::mt19937 m_random{20151221};
};

class AccessTokens : public ::testing::Test
{
protected:
    AccessTokens()
    {
        {
            AccessWorld::write(*openStore(world.data().location()), [this](Session& session) {
                const Instant now = session.now();
                session.tokens().insert({"good", "good", "", 1, std::nullopt, std::nullopt}, sha256(token));
                session.tokens().insert({"late", "late", "", 1, now, std::nullopt}, sha256("rkm_late"));
                session.tokens().insert({"revoked", "revoked", "", 1, std::nullopt, now},
                                        sha256("rkm_revoked"));
            });
        }
        served = std::make_unique<ServedWorld>(world);
    }

    RawAnswer withFields(const std::string& fields, const std::string& target = "/monitor-service/categories",
                         const std::string& method = "GET")
    {
        return served->askRaw(method + ' ' + target + " HTTP/1.1\r\nHost: h\r\n" + fields + "\r\n");
    }

    const std::string token = newTokenText();
    AccessWorld world;
    std::unique_ptr<ServedWorld> served;
};

TEST_F(AccessTokens, MutatedOnesLetNobodyIn)
{
    const int number = isLongRun() ? 2'000'000 : 100'000;
    Mutations mutations(token);
    const auto session = served->store.read();
    ASSERT_EQ(authenticate(*session, secretHashOf("Bearer " + token)).owner(), "good");
    int letIn = 0;
    for (int i = 0; i < number; ++i) {
        try {
            authenticate(*session, secretHashOf("Bearer " + mutations.next()));
            ++letIn;
        } catch (const AuthenticationError&) {
        }
    }
    EXPECT_EQ(letIn, 0);
    std::cout << "access: " << number << " mutated tokens, let in: " << letIn << std::endl;
}

TEST_F(AccessTokens, MutatedOnesLetNobodyInOverSockets)
{
    const int number = isLongRun() ? 100'000 : 3'000;
    Mutations mutations(token);
    std::map<unsigned, int> answers;
    const std::string head = "GET /monitor-service/categories HTTP/1.1\r\nHost: h\r\nAuthorization: Bearer ";
    ASSERT_EQ(served->askRaw(head + token + "\r\n\r\n").status, 200U);
    for (int i = 0; i < number; ++i) {
        std::string mutated = mutations.next();
        // What ends a field makes other fields, not another token; blanks around a value are not of it.
        mutated.erase(std::remove_if(mutated.begin(), mutated.end(),
                                     [](char c) { return c == '\r' || c == '\n' || c == ' ' || c == '\t'; }),
                      mutated.end());
        if (mutated != token) {
            ++answers[served->askRaw(head + mutated + "\r\n\r\n").status];
        }
    }
    for (const auto& [status, count] : answers) {
        EXPECT_TRUE(status == 400 || status == 401) << status;
        std::cout << "access: mutated tokens over sockets, answered " << status << ": " << count << std::endl;
    }
}

TEST_F(AccessTokens, OnlyOneWellFormedFieldLetsIn)
{
    const std::string good = "Authorization: Bearer " + token + "\r\n";
    EXPECT_EQ(withFields(good).status, 200U);
    for (const std::string& fields : std::vector<std::string>{
             good + good,
             good + "Authorization: Bearer x\r\n",
             "Authorization: Bearer x\r\n" + good,
             "authorization: x\r\nAUTHORIZATION: Bearer " + token + "\r\n",
             "Authorization : Bearer " + token + "\r\n",
             " Authorization: Bearer " + token + "\r\n",
             "Authorization: Bearer\r\n " + token + "\r\n",
             "Authorization: Bearer\x01" + token + "\r\n",
         }) {
        EXPECT_EQ(withFields(fields).status, 400U) << fields;
    }
    for (const std::string& fields : std::vector<std::string>{
             "",
             "Authorization:\r\n",
             "Authorization: " + token + "\r\n",
             "Authorization: Bearer\r\n",
             "Authorization: Bearer " + token + ",\r\n",
             "Authorization: Bearer " + token + ", Bearer " + token + "\r\n",
             "Authorization: Bearer \"" + token + "\"\r\n",
             "Authorization: Bearer token=" + token + "\r\n",
             "Authorization: Bearer\t" + token + "\r\n",
             "Authorization: Basic " + token + "\r\n",
             "Authorization: Digest " + token + "\r\n",
             "Authorization: Token " + token + "\r\n",
             "Authorization: Bearer x Bearer " + token + "\r\n",
             "Authorization: Bearer rkm_late\r\n",
             "Authorization: Bearer rkm_revoked\r\n",
             "Authorization: Bearer good\r\n",
             "Proxy-Authorization: Bearer " + token + "\r\n",
             "X-Authorization: Bearer " + token + "\r\n",
             "X-Forwarded-User: good\r\nX-Remote-User: good\r\n",
             "Cookie: token=" + token + "; Authorization=Bearer " + token + "\r\n",
         }) {
        const RawAnswer answer = withFields(fields);
        EXPECT_EQ(answer.status, 401U) << fields;
        EXPECT_THAT(answer.body, Not(HasSubstr(token)));
    }
    for (const char* const name : {"token", "access_token", "Authorization", "authorization", "bearer"}) {
        EXPECT_EQ(withFields("", "/monitor-service/categories?" + std::string(name) + "=" + token).status,
                  401U);
        EXPECT_EQ(
            withFields("", "/monitor-service/categories?" + std::string(name) + "=Bearer%20" + token).status,
            401U);
    }
    EXPECT_EQ(served->askRaw("GET /monitor-service/categories HTTP/1.1\r\nHost: good:" + token + "@h\r\n\r\n")
                  .status,
              400U);
}

TEST_F(AccessTokens, RevokedOrChangedOnOpenConnections)
{
    AccessWorld::addToken(served->store, ownOnly.name(), {{own.project, own.category, Right::Read}});
    const std::string cell = world.in(own).at("cells").front();
    const std::string bearer = "rkm_" + ownOnly.name();
    EXPECT_EQ(served->ask(bearer, "GET", "cells/" + cell).status, 200U);
    AccessWorld::write(served->store, [](Session& session) {
        session.grants().remove(session.grants().ofToken(ownOnly.name()).front().id);
    });
    EXPECT_EQ(served->ask(bearer, "GET", "cells/" + cell).status, 404U);
    AccessWorld::write(served->store, [](Session& session) { session.tokens().revoke(ownOnly.name(), 1); });
    const int commits = served->store.commits();
    EXPECT_EQ(served->ask(bearer, "GET", "cells/" + cell).status, 401U);
    EXPECT_EQ(served->ask(bearer, "DELETE", "cells/" + cell).status, 401U);
    EXPECT_EQ(served->store.commits(), commits);
}

// Each way to write an address or a method that another program between might read differently.
TEST_F(AccessTokens, AddressesAndMethodsHaveOneMeaning)
{
    addToken(served->store, ownOnly);
    const std::string bearer = "Authorization: Bearer rkm_" + ownOnly.name() + "\r\n";
    const std::string mine = world.in(own).at("cells").front();
    const std::string foreign = world.in(far).at("cells").front();
    const std::vector<std::string> before = served->rows();
    std::size_t asked = 0;
    for (const std::string& id : {mine, foreign}) {
        for (const std::string& path :
             std::vector<std::string>{"/monitor-service/cells/x/..%2f" + id,
                                      "/monitor-service/cells/x%2f..%2f" + id,
                                      "/monitor-service/cells/x/../" + id,
                                      "/monitor-service/cells//" + id,
                                      "/monitor-service//cells/" + id,
                                      "//monitor-service/cells/" + id,
                                      "/monitor-service/./cells/" + id,
                                      "/monitor-service/cells/./" + id,
                                      "/monitor-service/cells/%2e/" + id,
                                      "/monitor-service/cells/%2E%2E/cells/" + id,
                                      "/monitor-service/cells%2f" + id,
                                      "/monitor-service%2fcells/" + id,
                                      "/monitor-service/cells%5c" + id,
                                      "/monitor-service/cells\\" + id,
                                      "/monitor-service/Cells/" + id,
                                      "/MONITOR-SERVICE/cells/" + id,
                                      "/monitor-service/CELLS/" + id,
                                      "/monitor-service/cells/" + id + "/",
                                      "/monitor-service/cells/" + id + "%00",
                                      "/monitor-service/cells/" + id + "%00.json",
                                      "/monitor-service/cells/" + id + "%20",
                                      "/monitor-service/cells/%20" + id,
                                      "/monitor-service/cells/" + id + ".json",
                                      "/monitor-service/cells/" + id + ";v=1",
                                      "/monitor-service/cells/" + id + "%3f",
                                      "/monitor-service/cells/" + id + "%23",
                                      "/monitor-service/cells/" + id + "%2f",
                                      "/monitor-service/cells/" + id + "%252f",
                                      "/monitor-service/cells/%c0%ae%c0%ae/" + id,
                                      "/monitor-service/cells/" + id + "%0d%0aX:%20y",
                                      "/healthz/../monitor-service/cells/" + id,
                                      "/healthz/monitor-service/cells/" + id,
                                      "/metrics%2f..%2fmonitor-service/cells/" + id,
                                      "/monitor-service/projects/project-own/cells/" + id,
                                      "/monitor-service/projects/project-own%2f..%2fproject-far/cells",
                                      "/monitor-service/projects/project-far/../project-own/cells"}) {
            for (const char* const method : {"GET", "DELETE", "PUT", "PATCH"}) {
                ++asked;
                const RawAnswer answer = withFields(bearer + "Content-Length: 0\r\n", path, method);
                EXPECT_TRUE(answer.status == 404 || answer.status == 400 ||
                            (answer.status == 405 && method != std::string_view("GET")))
                    << method << ' ' << path << ' ' << answer.status << answer.body;
                EXPECT_EQ(withFields("", path).status / 100, 4U) << path;
            }
        }
        // Percent-encoding alone changes nothing, so it opens nothing either.
        EXPECT_EQ(withFields(bearer, "/monitor-service/cells/" + percentEncoded(id)).status,
                  id == mine ? 200U : 404U);
        EXPECT_EQ(withFields(bearer, "/%6donitor-service/%63ells/" + id).status, id == mine ? 200U : 404U);
        EXPECT_EQ(withFields("", "/%6donitor-service/cells/" + id).status, 401U);
        for (const char* const field :
             {"X-HTTP-Method-Override", "X-HTTP-Method", "X-Method-Override", "_method"}) {
            for (const char* const value : {"DELETE", "PUT"}) {
                ++asked;
                const RawAnswer answer =
                    withFields(bearer + field + ": " + value + "\r\n", "/monitor-service/cells/" + id);
                EXPECT_EQ(answer.status, id == mine ? 200U : 404U);
                EXPECT_EQ(withFields(bearer, "/monitor-service/cells/" + id + "?_method=" + value).status,
                          400U);
            }
        }
        for (const char* const field :
             {"X-Original-URL", "X-Rewrite-URL", "X-Forwarded-Prefix", "Destination"}) {
            ++asked;
            EXPECT_EQ(withFields(bearer + field + ": /monitor-service/cells/" + id + "\r\n",
                                 "/monitor-service/nothing")
                          .status,
                      404U);
        }
    }
    EXPECT_EQ(withFields(bearer, "/monitor-service/cells/" + mine, "delete").status, 405U);
    EXPECT_EQ(withFields(bearer, "/monitor-service/cells/" + mine, "Get").status, 405U);
    EXPECT_EQ(served->rows(), before);
    std::cout << "access: " << asked << " ways to write an address or a method, let in: 0" << std::endl;
}

std::string contentOf(const std::filesystem::path& file)
{
    const std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

// The whole life of a token with the service as it is run.
TEST(AccessCanary, IsInNoLogErrorOrFile)
{
    const TemporaryFolder folder;
    const std::string file = folder.file("data.db").string();
    const std::string project =
        runAdmin(file, {"project", "create", "--name", "P", "--time-zone", "UTC"}).line();
    runAdmin(file, {"category", "add", "Settlement"});
    const std::string token = runAdmin(file, {"token", "create", "--owner", "Ada"}).line();
    ASSERT_EQ(token.size(), 68U);
    std::string told = runAdmin(file, {"token", "list"}).out +
                       runAdmin(file, {"token", "list", "--json"}).out +
                       runAdmin(file, {"grant", "list", "--json"}).out;

    ServiceProcess service({"serve", "--data", file, "--listen", "127.0.0.1:0", "--log"});
    const std::string line = service.readLine();
    told += line;
    const auto port = static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
    const std::string path = "/monitor-service/projects/" + project + "/cells";
    for (const std::string& request : std::vector<std::string>{
             requestText("GET", "/monitor-service/categories", "Bearer " + token, ""),
             requestText("GET", path, "Bearer " + token, ""),
             requestText("POST", "/monitor-service/cells", "Bearer " + token, "{}"),
             requestText("GET", path, token, ""),
             requestText("GET", path, "Basic " + token, ""),
             requestText("GET", path, "Bearer " + token + "x", ""),
             requestText("GET", path, "Bearer x" + token, ""),
             requestText("GET", path + "?token=" + token, "", ""),
             requestText("GET", path + "?token=" + token, "Bearer " + token, ""),
             requestText("GET", path, "Bearer \x01" + token, ""),
             requestText("GET", "/metrics", "Bearer " + token, ""),
             "GET " + path + " HTTP/1.1\r\nHost: h\r\nAuthorization : Bearer " + token + "\r\n\r\n",
             "GET " + path + " HTTP/1.1\r\nHost: h\r\nAuthorization: a\r\nAuthorization: Bearer " + token +
                 "\r\n\r\n",
         }) {
        RawClient client(port);
        client.send(request);
        const RawAnswer answer = client.readAnswer();
        told += answer.statusLine + answer.body;
        for (const auto& [name, value] : answer.fields) {
            told += name + value;
        }
    }
    // While the service runs, its log lies beside the file.
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        told += contentOf(entry.path());
    }
    service.signal(SIGTERM);
    told += service.readErrors() + service.readOutput();
    EXPECT_EQ(service.wait(), 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        told += contentOf(entry.path());
    }
    EXPECT_THAT(told, HasSubstr("GET /monitor-service/categories 200"));
    EXPECT_EQ(told.find(token), std::string::npos);
    EXPECT_EQ(told.find(token.substr(4)), std::string::npos);
    EXPECT_EQ(told.find(token.substr(20, 16)), std::string::npos);
    // It is its SHA-256 that is kept.
    EXPECT_NE(told.find(sha256(token)), std::string::npos);
}

} // namespace
} // namespace monitorservice::test
