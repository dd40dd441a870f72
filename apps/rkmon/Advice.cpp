#include "Advice.h"

namespace {

// Empty when rkmon has nothing that helps.
QLatin1String textOf(Remedy remedy)
{
    switch (remedy) {
    case Remedy::GiveAddress:
        return QLatin1String("or use --base-api URL");
    case Remedy::GiveProject:
        return QLatin1String("or use --project PROJECT; rkmon project list shows them");
    case Remedy::GiveTokenFile:
        return QLatin1String("or use --token-file FILE");
    case Remedy::ExtendDeadline:
        return QLatin1String("--deadline SECONDS waits longer");
    case Remedy::TrustCertificate:
        return QLatin1String("--ca-file FILE trusts other certificates");
    case Remedy::GiveSubCategory:
        return QLatin1String("--sub-category gives it");
    case Remedy::ListProjects:
        return QLatin1String("rkmon project list shows those there are");
    case Remedy::ListMonitorings:
        return QLatin1String("rkmon monitoring ids lists them");
    case Remedy::ListSubCategories:
        return QLatin1String("rkmon subcategory list shows them");
    case Remedy::None:
        break;
    }
    return QLatin1String();
}

} // namespace

QString withAdvice(const Failure& failure)
{
    const QLatin1String advice = textOf(failure.remedy());
    return advice.isEmpty() ? failure.message() : failure.extended(advice).message();
}
