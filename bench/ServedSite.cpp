#include "ServedSite.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

using namespace monitorservice::test;

std::string jsonMember(const std::string& json, const std::string& name)
{
    const std::string begin = "\"" + name + "\":\"";
    const std::size_t found = json.find(begin);
    if (found == std::string::npos) {
        throw std::runtime_error("no " + name + " in " + json);
    }
    const std::size_t value = found + begin.size();
    return json.substr(value, json.find('"', value) - value);
}

ServedSite::ServedSite() : m_location{"--data", m_folder.file("data.db")}
{
    serve();
}

ServedSite::ServedSite(const std::string& url) : m_location{"--store", url}
{
    serve();
}

void ServedSite::serve()
{
    m_project =
        admin({"project", "create", "--name", "Harbour tunnel", "--time-zone", "Europe/Vienna"}).line();
    admin({"category", "add", "Settlement"});
    m_subCategory = admin({"subcategory", "create", "--project", m_project, "--category", "Settlement",
                           "--name", "Ground level"})
                        .line();
    const std::string token = admin({"token", "create", "--owner", "A. Engineer", "--json"}).out;
    m_token = jsonMember(token, "token");
    admin({"grant", "--token", jsonMember(token, "_id"), "--project", m_project, "--role", "editor"});

    std::vector<std::string> arguments{"serve", "--listen", "127.0.0.1:0"};
    arguments.insert(arguments.end(), m_location.begin(), m_location.end());
    m_service = std::make_unique<ServiceProcess>(arguments);
    const std::string line = m_service->readLine();
    m_port = static_cast<std::uint16_t>(
        std::strtoul(line.substr(std::min(line.rfind(':'), line.size() - 1) + 1).c_str(), nullptr, 10));
}

std::string ServedSite::requestText(const std::string& method, const std::string& path,
                                    const std::string& body) const
{
    std::string text = method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_port) +
                       "\r\nAccept: application/json\r\nAuthorization: Bearer " + m_token + "\r\n";
    if (!body.empty()) {
        text += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    }
    return text + "\r\n" + body;
}

std::string ServedSite::call(const std::string& request) const
{
    RawClient client(m_port);
    return call(client, request);
}

std::string ServedSite::call(RawClient& client, const std::string& request)
{
    client.send(request);
    RawAnswer answer = client.readAnswer();
    if (answer.status >= 300) {
        throw std::runtime_error("refused: " + answer.statusLine + " " + answer.body.substr(0, 500));
    }
    return std::move(answer.body);
}

std::string ServedSite::newCell(const std::string& name) const
{
    return call(requestText("POST", "/monitor-service/cells",
                            R"({"projectId":")" + m_project + R"(","name":")" + name +
                                R"(","category":"Settlement","alarmTo":["site@example.org"],)"
                                R"("links":[{"type":"model","rId":"m1"}]})"));
}

DeliveryTarget ServedSite::targetIn(const std::string& cell) const
{
    return {m_project, jsonMember(cell, "_id"), m_subCategory};
}

CommandResult ServedSite::admin(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> command{"admin"};
    command.insert(command.end(), m_location.begin(), m_location.end());
    command.insert(command.end(), arguments.begin(), arguments.end());
    CommandResult result = run(command);
    if (result.exitCode != 0) {
        throw std::runtime_error("monitor-service admin: " + result.error);
    }
    return result;
}
