#include "domain/SubCategoryKind.h"

namespace monitorservice {

std::string_view toText(SubCategoryKind kind)
{
    switch (kind) {
    case SubCategoryKind::Displacement:
        return "displacement";
    case SubCategoryKind::Settlement:
        return "settlement";
    case SubCategoryKind::Inclinometer:
        return "inclinometer";
    case SubCategoryKind::WaterLevel:
        return "water level";
    case SubCategoryKind::Force:
        return "force";
    case SubCategoryKind::Other:
        break;
    }
    return "other";
}

std::optional<SubCategoryKind> subCategoryKindOf(std::string_view text)
{
    for (const SubCategoryKind kind : allSubCategoryKinds) {
        if (toText(kind) == text) {
            return kind;
        }
    }
    return std::nullopt;
}

} // namespace monitorservice
