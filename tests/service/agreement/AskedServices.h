#pragma once

#include "RandomRequests.h"
#include "TwoServices.h"
#include "api/Resources.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <cstddef>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

constexpr Rights allRights = Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete;

/// A number in the environment.
inline std::size_t given(const char* name, std::size_t otherwise)
{
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::stoul(text);
}

/// Such as "GET cells/*/groupSettings".
template <typename Text>
std::string routeOf(std::string_view method, const std::vector<Text>& path)
{
    std::string route(method);
    for (std::size_t i = 0; i < path.size(); ++i) {
        route += i == 0 ? " " : "/";
        route += i == 1 ? std::string_view("*") : std::string_view(path[i]);
    }
    return route;
}

/// Two services with different stores, which were asked to make two projects and are asked the same. The
/// running test fails when they answer differently.
class AskedServices : public ::testing::TestWithParam<unsigned>
{
protected:
    AskedServices()
    {
        for (const char* const token : {"editor", "reader", "creator", "nobody"}) {
            services.addToken(token);
        }
        services.grant("editor", std::nullopt, std::nullopt, Right::Administer);
        for (const char* const category : {"Settlement", "Inclinometer"}) {
            ask({"editor", "POST", {"categories"}, {}, R"({"name":")" + std::string(category) + "\"}"});
        }
        for (const char* const zone : {"Europe/Vienna", "America/St_Johns"}) {
            ask({"editor",
                 "POST",
                 {"projects"},
                 {},
                 R"({"name":"Pit","timeZone":")" + std::string(zone) + "\"}"});
        }
        isReady = true;
    }

    // Asks both, and lets whoever makes a project work in it.
    void ask(const Question& question)
    {
        const HttpResponse answer = services.ask(question);
        ++answers[answer.status];
        EXPECT_EQ(answer.body.find("the store has failed"), std::string::npos) << question.text();
        if (answer.status >= 300) {
            return;
        }
        done.insert(routeOf(question.method, question.path));
        requests.learn(question, answer.body);
        const bool isNewProject =
            answer.status == 201 && question.path == std::vector<std::string>{"projects"};
        // One that nothing is in can be removed.
        if (isNewProject && (!isReady || requests.chance().once(3))) {
            openProject(answer.body);
        }
    }

    void openProject(const std::string& json)
    {
        simdjson::dom::parser parser;
        const std::string project(parser.parse(json)["_id"].get_string().value());
        services.grant("editor", project, std::nullopt, allRights);
        services.write([&project](Session& session) {
            // Whatever its name is now.
            const std::string category = session.categories().list().front();
            session.grants().add({session.newIdentifier(), "reader", project, category, Right::Read, 0});
        });
        services.grant("creator", project, std::nullopt, Right::Create);
        for (const char* const category : {"Settlement", "Inclinometer"}) {
            const std::string members =
                R"("name":")" + std::string(category) + R"(","category":")" + category;
            ask({"editor", "POST", {"projects", project, "subCategories"}, {}, "{" + members + "\"}"});
            ask({"editor", "POST", {"cells"}, {}, R"({"projectId":")" + project + "\"," + members + "\"}"});
        }
    }

    // Routes of which every request was refused.
    std::vector<std::string> neverDone() const
    {
        std::vector<std::string> never;
        for (const Route& route : allRoutes()) {
            for (const auto& [method, handler] : route.methods) {
                if (done.count(routeOf(method, route.path)) == 0) {
                    never.push_back(routeOf(method, route.path));
                }
            }
        }
        return never;
    }

    // What fails is told with the seed and the number of the request.
    void askRandomly(std::size_t number)
    {
        for (std::size_t i = 0; i < number && !HasFailure(); ++i) {
            letTimePass();
            ask(requests.next(services.now()));
            ++asked;
            EXPECT_FALSE(HasFailure()) << "request " << asked << " of seed " << seed;
        }
    }

    void letTimePass()
    {
        static const std::vector<Instant> steps{0, 0, 1, 1000, 60'000, 3'600'000, 40'000'000, -1000};
        services.wait(requests.chance().of(steps));
    }

    const unsigned seed = static_cast<unsigned>(given("RK_TEST_SEED", GetParam()));
    TwoServices services;
    RandomRequests requests{seed};
    std::size_t asked = 0;           // random requests
    bool isReady = false;            // both projects are there that requests begin with
    std::map<unsigned, int> answers; // by status
    std::set<std::string> done;      // routes
};

} // namespace monitorservice::test
