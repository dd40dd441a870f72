#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace monitorservice {

/// What a sub-category measures.
enum class SubCategoryKind
{
    Displacement,
    Settlement,
    Inclinometer, ///< a point name is a borehole, its depths are measured together
    WaterLevel,
    Force,
    Other
};

constexpr std::array<SubCategoryKind, 6> allSubCategoryKinds{
    SubCategoryKind::Displacement, SubCategoryKind::Settlement, SubCategoryKind::Inclinometer,
    SubCategoryKind::WaterLevel,   SubCategoryKind::Force,      SubCategoryKind::Other};

/// As documents and commands name it: "displacement", "settlement", "inclinometer", "water level", "force",
/// "other".
std::string_view toText(SubCategoryKind kind);

/// The reverse; nothing when no kind has the name.
std::optional<SubCategoryKind> subCategoryKindOf(std::string_view text);

} // namespace monitorservice
