#include "copy/DocumentMembers.h"

#include "domain/DocumentReader.h"

namespace monitorservice {

std::string memberOf(std::string_view document, const char* name)
{
    return DocumentReader("document", document).text(name);
}

} // namespace monitorservice
