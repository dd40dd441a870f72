#pragma once

#include "TestServers.h"

#include <simdjson.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace monitorservice::test {

/// A mail as its reader sees it, read by the mail library of another language.
struct KeptMail
{
    std::vector<std::string> envelope; ///< sender, recipients
    std::string from;
    std::string to;
    std::string subject;
    std::string id;
    std::int64_t time = 0; ///< seconds since 1970
    std::string body;
    std::vector<std::string> defects;
    bool isAscii = false;

    /// Names of the points that it tells of.
    std::set<std::string> points() const
    {
        std::set<std::string> names;
        std::istringstream lines(body);
        for (std::string line; std::getline(lines, line);) {
            for (const char* const what : {", new", ", further beyond its limit"}) {
                const std::size_t end = line.size() - std::min(line.size(), std::string(what).size());
                if (line.compare(end, std::string::npos, what) == 0) {
                    names.insert(line.substr(0, end));
                }
            }
        }
        return names;
    }
};

inline std::vector<std::string> textsIn(simdjson::dom::element array)
{
    std::vector<std::string> texts;
    for (const simdjson::dom::element text : array.get_array()) {
        texts.emplace_back(text.get_string().value());
    }
    return texts;
}

/// The mails that the server has kept, the earliest first.
inline std::vector<KeptMail> mailsOf(const TestServer& server)
{
    std::vector<KeptMail> mails;
    simdjson::dom::parser parser;
    for (const std::string& text : server.kept()) {
        if (text.empty()) {
            continue; // a sign of the server's
        }
        const simdjson::dom::element mail = parser.parse(text);
        const auto member = [&mail](const char* name) {
            return std::string(mail[name].get_string().value());
        };
        mails.push_back({textsIn(mail["envelope"]), member("from"), member("to"), member("subject"),
                         member("id"), mail["time"], member("body"), textsIn(mail["defects"]),
                         mail["isAscii"]});
    }
    std::sort(mails.begin(), mails.end(),
              [](const KeptMail& left, const KeptMail& right) { return left.time < right.time; });
    return mails;
}

} // namespace monitorservice::test
