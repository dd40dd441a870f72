#pragma once

#include "support/TemporaryFolder.h"

#include <atomic>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace monitorservice::test {

/// Stands between the store and a database server, and does something to a COMMIT.
class CommitProxy
{
public:
    enum class Fate
    {
        Passed,
        Lost,       ///< the connection ends before it reaches the server
        Unanswered, ///< the connection ends when the server has answered, and the answer is lost
        Swallowed   ///< it does not reach the server, and the connection stays
    };

    /// In front of the server whose socket is in the folder that the URL names as its host.
    explicit CommitProxy(const std::string& url);
    ~CommitProxy();
    CommitProxy(const CommitProxy&) = delete;
    CommitProxy& operator=(const CommitProxy&) = delete;

    /// The same database through the proxy.
    const std::string& url() const { return m_url; }
    /// Of the next COMMIT; those after it pass.
    void setFate(Fate fate) { m_fate = fate; }
    /// Whether connections are accepted and closed at once from now on.
    void refuse(bool refused) { m_isRefusing = refused; }

private:
    void listen();
    void accept();
    void connect(int client);
    void pass(int client, int server);
    bool passCommit(int client, int server, const std::string& bytes);
    void watch(int socket);

    TemporaryFolder m_folder; // of the socket
    std::string m_server;     // the path of the server's
    std::string m_url;
    std::atomic<Fate> m_fate = Fate::Passed;
    std::atomic<bool> m_isRefusing = false;
    std::atomic<bool> m_isEnding = false;
    int m_listener = -1;
    std::mutex m_mutex;
    std::vector<int> m_sockets; // open ones, which the destructor shuts down
    std::list<std::thread> m_connections;
    std::thread m_accepting;
};

} // namespace monitorservice::test
