#include "CopyCommand.h"
#include "ServeCommand.h"
#include "UsageError.h"
#include "admin/AdminCommand.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

} // namespace

int main(int argc, char** argv)
{
    try {
        CLI::App application("The monitoring service: keeps monitorings and answers for them over HTTP",
                             "monitor-service");
        application.set_version_flag("--version", MONITOR_SERVICE_VERSION);
        application.require_subcommand(1);
        monitorservice::addServeCommand(application);
        monitorservice::addAdminCommand(application);
        monitorservice::addCopyCommand(application);
        try {
            application.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() == 0) {
                return application.exit(error); // help, or the version
            }
            monitorservice::reportUsageError(error, application);
            return exitUsage;
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "monitor-service: " << error.what() << '\n';
        return exitFailed;
    }
}
