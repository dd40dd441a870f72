#include "admin/AdminCommand.h"
#include "store/OpenStore.h"

#include <iostream>

namespace monitorservice {

void addBackupCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const backup =
        admin.add_subcommand("backup", "Copy the data to a new file, checked, also while the service runs");
    const auto copy = std::make_shared<std::string>();
    backup->add_option("file", *copy, "The copy; it must not exist")->required()->type_name("FILE");
    backup->callback([settings, copy] {
        backUpStore(locationOf(settings->store), *copy);
        std::cerr << *copy << " is whole and checked\n";
    });

    CLI::App* const restore =
        admin.add_subcommand("restore", "Make the data from a backup; there must be none, and no service");
    const auto source = std::make_shared<std::string>();
    restore->add_option("file", *source, "The backup; it stays as it is")->required()->type_name("FILE");
    restore->callback([settings, source] {
        const std::string location = locationOf(settings->store);
        restoreStore(*source, location);
        std::cerr << nameOfStore(location) << " is whole and checked\n";
    });
}

} // namespace monitorservice
