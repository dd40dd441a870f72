#include "admin/CommandAuthor.h"

#include "administration/TextCheck.h"

#include <cstdlib>

namespace monitorservice {

namespace {

// The environment has it on every system; who gives commands could change the data in any other way, too.
std::string loginName()
{
    for (const char* const variable : {"USER", "LOGNAME", "USERNAME"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && faultOf(name).empty()) {
            return name;
        }
    }
    return "unknown";
}

} // namespace

std::string commandAuthor()
{
    return loginName() + " (command line)";
}

} // namespace monitorservice
