#pragma once

#include "HeldPort.h"
#include "support/ChildProcess.h"
#include "support/PostgresServer.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace monitorservice::test {

/// The deployment of samples/deployment on one machine: a primary with its standby, three instances of the
/// service and the balancer before them. Its processes end with the test, however that ends.
class Deployment
{
public:
    /// Starts the servers, which hold no data yet.
    Deployment();

    /// Starts the instances and the balancer; returns when that answers.
    void start();
    /// Asks all of these to end; true when they have done so as they should.
    bool stop();

    static constexpr std::size_t instanceCount = 3;
    void killInstance(std::size_t index);
    void startInstance(std::size_t index);
    std::uint16_t instancePort(std::size_t index) const { return m_ports.at(index).number(); }

    /// Of the balancer.
    std::uint16_t port() const { return m_port.number(); }
    /// Of the database, on whichever server can be written.
    std::string url() const;
    /// The file with this address.
    const std::string& urlFile() const { return m_urlFile; }

    PostgresServer& primary() { return m_primary; }
    PostgresServer& standby() { return m_standby; }

    /// Runs one statement on one server, as its operator; the first value of what it gives.
    static std::string ask(const PostgresServer& server, const std::string& statement);

private:
    PostgresServer m_primary;
    PostgresServer m_standby = m_primary.standby();
    std::string m_urlFile;
    HeldPort m_port;
    std::array<HeldPort, instanceCount> m_ports;
    std::array<std::unique_ptr<ChildProcess>, instanceCount> m_instances;
    std::unique_ptr<ChildProcess> m_balancer;
};

} // namespace monitorservice::test
