#pragma once

#include "support/ChildProcess.h"

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// The service's executable as a process of its own; killed with the object if it still runs then.
class ServiceProcess : public ChildProcess
{
public:
    explicit ServiceProcess(std::vector<std::string> arguments, void (*beforeStart)() = nullptr)
        : ChildProcess(commandOf(std::move(arguments)), beforeStart)
    {
    }

private:
    static std::vector<std::string> commandOf(std::vector<std::string> arguments)
    {
        // The developer's own data are not the tests' business.
        static const int unset = unsetenv("MONITOR_SERVICE_DATA");
        static_cast<void>(unset);
        arguments.insert(arguments.begin(), MONITOR_SERVICE_EXECUTABLE);
        return arguments;
    }
};

/// What a command that ends by itself left behind.
struct CommandResult
{
    int exitCode = 0;
    std::string out;
    std::string error;

    /// The output without the end of its last line.
    std::string line() const { return out.substr(0, out.find_last_not_of('\n') + 1); }
};

/// Runs "monitor-service" with the arguments to its end.
inline CommandResult run(const std::vector<std::string>& arguments)
{
    ServiceProcess process(arguments);
    CommandResult result;
    // Messages are far smaller than a pipe, so reading one after the other cannot come to a standstill.
    result.out = process.readOutput();
    result.error = process.readErrors();
    result.exitCode = process.wait();
    return result;
}

/// Runs "monitor-service admin --data FILE" with the arguments.
inline CommandResult runAdmin(const std::string& file, std::vector<std::string> arguments)
{
    const std::vector<std::string> prefix{"admin", "--data", file};
    arguments.insert(arguments.begin(), prefix.begin(), prefix.end());
    return run(arguments);
}

} // namespace monitorservice::test
