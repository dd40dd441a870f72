#include "api/Administering.h"

namespace monitorservice {

void requireAdministrator(const Principal& principal)
{
    if (!principal.mayAdminister()) {
        throw ApiError(403, "the token may not administer the service");
    }
}

ApiError answerTo(const AdministrationError& refusal)
{
    switch (refusal.failure()) {
    case AdministrationFailure::BadValue: {
        const std::string member = refusal.subject() == "category" ? "name" : refusal.subject();
        return {400, "\"" + member + "\" " + refusal.what()};
    }
    case AdministrationFailure::Unknown:
        return {404, refusal.what()};
    default:
        return {409, refusal.what()};
    }
}

} // namespace monitorservice
