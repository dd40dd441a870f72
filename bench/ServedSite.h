#pragma once

#include "DeliveryText.h"
#include "service/admin/ServiceProcess.h"
#include "service/http/RawClient.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The text of a member of a JSON object; throws when there is none.
std::string jsonMember(const std::string& json, const std::string& name);

/// The service as it is shipped, in a process of its own: with one project, the category "Settlement" and a
/// token that may do everything there.
class ServedSite
{
public:
    /// On a file in the folder for temporary files.
    ServedSite();
    /// On the empty database at "postgresql://…".
    explicit ServedSite(const std::string& url);

    std::uint16_t port() const { return m_port; }
    pid_t processId() const { return m_service->id(); }
    const std::string& project() const { return m_project; }
    const std::string& token() const { return m_token; }
    /// A folder for files of the measurement, which goes with the object.
    const monitorservice::test::TemporaryFolder& folder() const { return m_folder; }

    std::string requestText(const std::string& method, const std::string& path,
                            const std::string& body = {}) const;

    /// The body of the answer; throws when the service refuses.
    std::string call(const std::string& request) const;
    static std::string call(monitorservice::test::RawClient& client, const std::string& request);

    /// The document of a new monitoring.
    std::string newCell(const std::string& name) const;

    /// The sub-category "Ground level" of a monitoring.
    DeliveryTarget targetIn(const std::string& cell) const;

private:
    void serve();
    monitorservice::test::CommandResult admin(const std::vector<std::string>& arguments) const;

    monitorservice::test::TemporaryFolder m_folder;
    std::vector<std::string> m_location; ///< of the data, as the command line has it
    std::string m_project;
    std::string m_subCategory;
    std::string m_token;
    std::unique_ptr<monitorservice::test::ServiceProcess> m_service;
    std::uint16_t m_port = 0;
};
