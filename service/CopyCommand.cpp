#include "CopyCommand.h"

#include "access/SecretFile.h"
#include "copy/StoreCopy.h"
#include "store/OpenStore.h"

#include <chrono>
#include <iostream>
#include <memory>
#include <string>

namespace monitorservice {

namespace {

// One end of a copy, as it is given.
struct CopyEnd
{
    std::string location;
    std::string urlFile;
};

struct CopySettings
{
    CopyEnd from;
    CopyEnd to;
};

void addEnd(CLI::App& command, const std::string& option, const std::string& what, CopyEnd& end)
{
    CLI::Option* const location =
        command.add_option(option, end.location, what + ": a file, or postgresql://USER@HOST:PORT/NAME")
            ->type_name("FILE|URL");
    command
        .add_option(option + "-url-file", end.urlFile,
                    "Or the database whose address, with its password, is the one line of this file")
        ->type_name("FILE")
        ->excludes(location);
}

std::string locationOf(const std::string& option, const CopyEnd& end)
{
    if (!end.urlFile.empty()) {
        return readSecretFile(option + "-url-file", end.urlFile);
    }
    if (end.location.empty()) {
        throw CLI::RequiredError(option + " or " + option + "-url-file");
    }
    return end.location;
}

void copy(const CopySettings& settings)
{
    const std::string source = locationOf("--from", settings.from);
    const std::string target = locationOf("--to", settings.to);
    StoreOptions patient;
    patient.patience = std::chrono::minutes(1);
    const std::unique_ptr<Store> from = openStore(source, patient);
    StoreOptions whole = patient;
    whole.createIfMissing = true;
    whole.mayBeUnfinished = true;
    whole.forService = true; // so that none begins on half of the data
    whole.channels = {Channel::Mail, Channel::Webhook};
    const std::unique_ptr<Store> to = openStore(target, whole);
    std::cerr << "copying " << nameOfStore(source) << " as it is at " << isoText(systemNow()) << " to "
              << nameOfStore(target) << '\n';
    const CopiedContent copied =
        copyStore(*from, *to, [](const std::string& line) { std::cerr << line + '\n'; });
    std::cout << toText(copied.count) << "\nboth hold the same: SHA-256 " << copied.checksum << '\n';
}

} // namespace

void addCopyCommand(CLI::App& application)
{
    CLI::App* const command = application.add_subcommand(
        "copy", "Copy all data from a file to a database, or back, or to another of its kind");
    const auto settings = std::make_shared<CopySettings>();
    addEnd(*command, "--from", "The data", settings->from);
    addEnd(*command, "--to", "Where there are none yet", settings->to);
    command->footer(R"(
Identifiers, tokens, limits, alarms, notifications still to be sent and the audit trail go with the measured
data. In the end both places are read again and compared. A copy that was interrupted goes on when the same
command is run again; until it is complete, no service and no other command takes it for data. Stop the
service first, unless it is a trial: what it takes in after the beginning is not in the copy.

Examples:
  monitor-service copy --from site.db --to-url-file site.url
  monitor-service copy --from-url-file site.url --to site.db
)");
    command->callback([settings] { copy(*settings); });
}

} // namespace monitorservice
