#include "AccessRules.h"
#include "api/Authentication.h"
#include "json/JsonText.h"

#include <iostream>
#include <random>

namespace monitorservice::test {
namespace {

const Role ownOnly{"", "rced", "", ""};

// Texts that mean something to SQL, JSON, file systems, headers, patterns, formats, or to whoever compares
// letters, and their combinations.
std::vector<std::string> hostileTexts()
{
    const std::vector<std::string> seeds{
        "' OR '1'='1",
        "' OR 1=1 --",
        "\" OR \"\"=\"",
        "'; DROP TABLE cells; --",
        "'; DELETE FROM samples; --",
        "1; UPDATE tokens SET revoked_at=NULL",
        "') UNION SELECT secret_sha256 FROM tokens --",
        "x' UNION ALL SELECT document FROM cells WHERE '1",
        "/**/OR/**/1=1",
        "0x4f52",
        "%' ESCAPE '%",
        "_%",
        "*",
        "NULL",
        "ATTACH DATABASE '/tmp/x' AS y",
        "PRAGMA writable_schema=1",
        "load_extension('x')",
        "randomblob(1000000000)",
        "document",
        "category",
        "1 ASC, (SELECT 1)",
        "_id; --",
        "CASE WHEN 1 THEN name END",
        "json_extract(document,'$')",
        "p.point",
        "rowid",
        "\"}",
        "{\"$ne\":null}",
        "{\"$gt\":\"\"}",
        "[$ne]",
        "$where",
        "$or",
        "$expr",
        "$regex",
        "$",
        ".",
        "..",
        "a..b",
        ".name",
        "name.",
        "__proto__",
        "constructor.prototype",
        "\\u0000",
        "\\ud800",
        "\\",
        "\\\"",
        "\"],\"x\":[\"",
        "../../etc/passwd",
        "..\\..\\windows",
        "/etc/passwd",
        "file:///etc/passwd",
        "C:\\x",
        "%2e%2e%2f",
        "%00",
        "%0d%0aSet-Cookie: a=b",
        "\r\nX-Injected: 1",
        "\r\n\r\nHTTP/1.1 200 OK",
        "\n",
        "\r",
        "\t",
        "(a+)+$",
        "(?R)",
        "(?C1)",
        "(*UTF)",
        "(*LIMIT_MATCH=1)",
        "[[:<:]]",
        "(?<n>a)\\k<n>",
        "^",
        "|",
        "(",
        "[",
        "a{99999}",
        "%s%s%s%n",
        "%x%x%x%x",
        "{0}",
        "${jndi:ldap://x}",
        "{{7*7}}",
        "<script>alert(1)</script>",
        "&amp;",
        "&#x27;",
        "$(id)",
        "`id`",
        "| id",
        "; id",
        "--help",
        "\xC2\xA0",
        "\xE2\x80\xAE"
        "txt",
        "\xE2\x80\x8B",
        "\xEF\xBB\xBF",
        "\xEF\xBC\x87 OR 1=1",
        "\xCA\xBC OR 1=1",
        "\xEF\xBF\xBE",
        "\xF0\x9F\x98\x80",
        "\xC4\xB0\xC4\xB1",
        "ﬃ",
        "A\xCC\x8A",
        "\xD0\x90mber",
        "true",
        "-1",
        "1e309",
        "9223372036854775808",
        "0000000000000000000000000",
        "\x01\x02",
        "\x7F",
    };
    std::vector<std::string> texts = seeds;
    std::mt19937 random(20151221);
    const std::size_t wanted = isLongRun() ? 5000 : 500;
    while (texts.size() < wanted) {
        texts.push_back(seeds[random() % seeds.size()] + seeds[random() % seeds.size()]);
    }
    return texts;
}

class AccessInjection : public ::testing::Test
{
protected:
    AccessInjection()
    {
        {
            addToken(*openStore(world.data().location()), ownOnly);
        }
        served = std::make_unique<ServedWorld>(world);
        cell = world.in(own).at("cells").front();
        before = served->rows();
        tokensBefore = tokens();
    }

    RawAnswer ask(const std::string& method, const std::string& target, const std::string& body = {})
    {
        ++asked;
        try {
            return served->askDirectly("rkm_" + ownOnly.name(), method, target, body);
        } catch (const RefusedRequest& refusal) { // as the connection would answer it
            RawAnswer answer;
            answer.status = refusal.status();
            return answer;
        }
    }

    std::string tokens() const
    {
        std::string text;
        for (const Token& token : served->store.read()->tokens().list()) {
            text += token.id + token.owner + (token.revokedAt ? "revoked" : "") + ';';
        }
        return text;
    }

    static std::string quotedText(const std::string& text)
    {
        const std::string object = JsonObjectWriter().text("x", text).finish();
        return object.substr(5, object.size() - 6);
    }

    void expectUnchanged() const
    {
        EXPECT_EQ(served->rows(), before);
        EXPECT_EQ(tokens(), tokensBefore);
    }

    AccessWorld world;
    std::unique_ptr<ServedWorld> served;
    std::string cell;
    std::vector<std::string> before;
    std::string tokensBefore;
    std::size_t asked = 0;
};

// A value is compared letter by letter, a name, an order or an identifier that is unknown is refused or finds
// nothing.
TEST_F(AccessInjection, WhatIsReadFindsNothingElse)
{
    const int commits = served->store.commits();
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        const std::string encoded = percentEncoded(text);
        for (const char* const list : {"cells", "subCategories", "pointLocations", "groupSettings",
                                       "dataManages", "alarmManages", "changes"}) {
            const std::string path = "projects/project-own/" + std::string(list);
            for (const std::string& condition :
                 {"{\"name\":" + quotedText(text) + "}", "{\"_id\":{\"$in\":[" + quotedText(text) + "]}}",
                  "{\"alias\":{\"$gte\":\"~\",\"$in\":[" + quotedText(text) + "]}}"}) {
                const RawAnswer answer = ask("GET", path + "?where=" + percentEncoded(condition));
                EXPECT_TRUE(answer.status == 400 || answer.body == "[]") << answer.status << answer.body;
            }
            const RawAnswer byName =
                ask("GET", path + "?where=" + percentEncoded("{" + quotedText(text) + ":\"v\"}"));
            EXPECT_TRUE(byName.status == 400 || byName.body == "[]") << byName.status << byName.body;
            const RawAnswer raw = ask("GET", path + "?where=" + encoded);
            EXPECT_TRUE(raw.status == 400 || raw.status == 200) << raw.status << raw.body;
            const RawAnswer ordered = ask("GET", path + "?order=" + encoded);
            EXPECT_TRUE(ordered.status == 400 || (text == "category" && ordered.status == 200))
                << ordered.body;
            EXPECT_EQ(ask("GET", path + "?limit=" + encoded).status,
                      text == "9223372036854775808" || text == "0000000000000000000000000" ? 200U : 400U);
            EXPECT_EQ(ask("GET", path + "?" + encoded + "=1").status, 400U);
        }
        const RawAnswer pattern =
            ask("GET", "projects/project-own/cells?where=" +
                           percentEncoded("{\"name\":{\"$regex\":" + quotedText(text) + "}}"));
        EXPECT_TRUE(pattern.status == 200 || pattern.status == 400 || pattern.status == 422) << pattern.body;
        for (const char* const kind : {"cells/", "pointLocations/", "groupSettings/", "subCategories/"}) {
            const unsigned status = ask("GET", kind + encoded).status;
            EXPECT_TRUE(status == 404 || status == 400) << status;
        }
        const unsigned project = ask("GET", "projects/" + encoded + "/cells").status;
        EXPECT_TRUE(project == 404 || project == 400) << project;
        const RawAnswer may = ask("GET", "projects/project-own/auth?category=" + encoded + "&key=edit");
        EXPECT_TRUE(may.status == 400 || may.body == R"({"value":"false"})") << may.body;
        EXPECT_THROW(authenticate(*served->store.read(), secretHashOf("Bearer " + text)),
                     AuthenticationError);
    }
    EXPECT_TRUE(served->isUnchanged(commits, before));
    expectUnchanged();
    std::cout << "access: " << hostileTexts().size() << " hostile texts, " << asked
              << " requests that read, effects: 0" << std::endl;
}

// What is refused changes nothing.
TEST_F(AccessInjection, WhatIsWrittenToWrongPlacesIsRefused)
{
    const int commits = served->store.commits();
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        const std::string value = quotedText(text);
        for (const std::string& body :
             {"{\"projectId\":" + value + R"(,"name":"n","category":"Settlement"})",
              R"({"projectId":"project-own","name":"n","category":)" + value + "}",
              R"({"projectId":"project-own","name":"n","category":"Settlement",)" + value + ":1}",
              R"({"projectId":"project-own","name":"n","category":"Settlement","alarmTo":)" + value + "}",
              text}) {
            const unsigned status = ask("POST", "cells", body).status;
            EXPECT_TRUE(status >= 400 && status < 500) << status << body;
        }
        for (const std::string& body :
             {"{\"_id\":" + value + "}", "{\"projectId\":" + value + "}", "{\"category\":" + value + "}",
              "{" + value + ":" + value + "}", text}) {
            const unsigned status = ask("PUT", "cells/" + cell, body).status;
            EXPECT_TRUE(status >= 400 && status < 500) << status << body;
        }
        const std::string sample =
            R"("name":"P","data":[{"count":1,"time":"2016-01-01T00:00:00Z","value":1}]})";
        for (const std::string& body :
             {"[{\"cellId\":" + value + R"(,"subCategoryId":"AmberGround",)" + sample + "]",
              R"([{"cellId":")" + cell + R"(","subCategoryId":)" + value + "," + sample + "]",
              R"([{"cellId":")" + cell +
                  R"(","subCategoryId":"AmberGround","name":"P","data":[{"count":1,"time":)" + value +
                  R"(,"value":1}]}])",
              R"([{"cellId":")" + cell +
                  R"(","subCategoryId":"AmberGround","name":"P","data":[{"count":1,"time":)" +
                  R"("2016-01-01T00:00:00Z","value":)" + value + "}]}]"}) {
            const unsigned status = ask("POST", "pointLocations", body).status;
            EXPECT_TRUE(status >= 400 && status < 500) << status << body;
        }
        const std::string encoded = percentEncoded(text);
        const unsigned removed = ask("DELETE", "cells/" + encoded).status;
        EXPECT_TRUE(removed >= 400 && removed < 500) << removed;
        const unsigned cascaded = ask("DELETE", "dataManages/" + encoded + "?cascade=true").status;
        EXPECT_TRUE(cascaded >= 400 && cascaded < 500) << cascaded;
        const RawAnswer related = ask(
            "PUT", "pointLocations?where=" + percentEncoded("{\"name\":" + value + "}"), R"({"links":[]})");
        EXPECT_TRUE(related.status == 400 || related.body == R"({"count":0})") << related.body;
    }
    EXPECT_TRUE(served->isUnchanged(commits, before));
    expectUnchanged();
    std::cout << "access: " << hostileTexts().size() << " hostile texts, " << asked
              << " writes refused, effects: 0" << std::endl;
}

// Where any text may stand it is kept and found as it is, and touches nothing else.
TEST_F(AccessInjection, WhatMayBeAnyTextIsKeptLetterByLetter)
{
    const std::vector<std::string> texts = hostileTexts();
    const std::size_t number = isLongRun() ? texts.size() : 120;
    std::vector<std::string> made;
    for (std::size_t i = 0; i < number; ++i) {
        const std::string& text = texts[i];
        SCOPED_TRACE(text);
        const RawAnswer answer =
            ask("POST", "cells",
                R"({"projectId":"project-own","category":"Settlement","name":)" + quotedText(text) + "}");
        ASSERT_EQ(answer.status, 201U) << answer.body;
        EXPECT_EQ(member(answer.body, "name"), text);
        const std::string id = member(answer.body, "_id");
        const RawAnswer found = ask("GET", "projects/project-own/cells?where=" +
                                               percentEncoded("{\"name\":" + quotedText(text) + "}"));
        EXPECT_EQ(membersOf(found.body, "_id"), std::vector<std::string>{id});
        EXPECT_EQ(ask("DELETE", "cells/" + id).status, 200U);
    }
    // The audit trail keeps them, nothing else does.
    const RawAnswer trail = ask("GET", "projects/project-own/changes?order=_id&where=" +
                                           percentEncoded(R"({"action":"cell.deleted"})"));
    EXPECT_EQ(membersOf(trail.body, "name"),
              std::vector<std::string>(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(number)));
    std::vector<std::string> left = served->rows();
    left.erase(std::remove_if(left.begin(), left.end(),
                              [&](const std::string& row) {
                                  return row.find(R"("action":"cell.)") != std::string::npos &&
                                         !std::binary_search(before.begin(), before.end(), row);
                              }),
               left.end());
    EXPECT_EQ(left, before);
    EXPECT_EQ(tokens(), tokensBefore);
    std::cout << "access: " << number << " hostile texts kept and found letter by letter" << std::endl;
}

} // namespace
} // namespace monitorservice::test
