#pragma once

#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A request as the service sees it, its target decoded.
struct Question
{
    std::string token; ///< empty: none is shown
    std::string method;
    std::vector<std::string> path; ///< below "/monitor-service/"
    std::vector<std::pair<std::string, std::string>> parameters = {};
    std::string body = {};

    /// For people.
    std::string text() const
    {
        std::string text = method + ' ';
        for (const std::string& segment : path) {
            text += '/' + segment;
        }
        for (const auto& [name, value] : parameters) {
            text += "\n  " + name + '=' + value;
        }
        return text + "\n  token: " + token + "\n  body: " + body;
    }
};

} // namespace monitorservice::test
