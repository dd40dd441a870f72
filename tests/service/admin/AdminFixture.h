#pragma once

#include "ServiceProcess.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

/// The commands of administration over data of their own, none at first.
class AdminFixture : public ::testing::Test
{
protected:
    using Arguments = std::vector<std::string>;

    CommandResult admin(const Arguments& arguments) const { return runAdmin(file, arguments); }

    // Runs a command that must succeed; gives what it prints.
    std::string line(const Arguments& arguments) const
    {
        const CommandResult result = admin(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        return result.line();
    }

    void expectFailure(const Arguments& arguments, const std::string& message) const
    {
        const CommandResult result = admin(arguments);
        EXPECT_EQ(result.exitCode, 1) << ::testing::PrintToString(arguments);
        EXPECT_THAT(result.error, ::testing::HasSubstr(message)) << ::testing::PrintToString(arguments);
        EXPECT_THAT(result.out, ::testing::IsEmpty());
    }

    std::string newProject() const
    {
        return line({"project", "create", "--name", "Pit", "--time-zone", "UTC"});
    }

    std::string newSubCategory(const std::string& project, const std::string& name,
                               const Arguments& more = {}) const
    {
        Arguments arguments{"subcategory", "create",     "--project", project,
                            "--category",  "Settlement", "--name",    name};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return line(arguments);
    }

    std::string newTokenId(const std::string& owner) const
    {
        const std::string created = line({"token", "create", "--owner", owner, "--json"});
        simdjson::dom::parser parser;
        return std::string(parser.parse(created)["_id"].get_string().value());
    }

    // A member of the object at the index of a JSON array, as JSON text.
    static std::string memberAt(const std::string& json, std::size_t index, std::string_view name)
    {
        simdjson::dom::parser parser;
        const simdjson::dom::element value = parser.parse(json).at(index)[name];
        return simdjson::minify(value);
    }

    TemporaryFolder folder;
    std::string file = folder.file("data.db").string();
};

} // namespace monitorservice::test
