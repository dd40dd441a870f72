#pragma once

#include <array>

/// The headings of AGS files that this system reads and writes.
namespace ags {

constexpr const char* locationHeading = "LOCA_ID";
constexpr const char* installationHeading = "MONG_ID";
constexpr const char* distanceHeading = "MONG_DIS";
constexpr const char* timeHeading = "MOND_DTIM";
constexpr const char* readingTypeHeading = "MOND_TYPE";
constexpr const char* referenceHeading = "MOND_REF";
constexpr const char* readingHeading = "MOND_RDNG";
constexpr const char* readingUnitHeading = "MOND_UNIT";

/// The others that the format defines for readings.
constexpr std::array<const char*, 9> otherReadingHeadings{"MOND_INST", "MOND_METH", "MOND_LIM",
                                                          "MOND_ULIM", "MOND_NAME", "MOND_CRED",
                                                          "MOND_CONT", "MOND_REM",  "FILE_FSET"};

/// A heading of this system's own, which a file declares in its group DICT.
struct OwnHeading
{
    const char* name;
    const char* type;
    const char* description;
};

// What the format has no heading for. The description tells them from headings of the same name that others
// declare.
constexpr OwnHeading countHeading{"MOND_SCNT", "0DP", "Count of the sample"};
constexpr OwnHeading timeFlagHeading{"MOND_TFLG", "X", "Flag of the time of the sample"};
constexpr OwnHeading initialValueHeading{"MOND_IVAL", "U",
                                         "Initial value that variations of the point are counted from"};

constexpr std::array<OwnHeading, 3> ownHeadings{countHeading, timeFlagHeading, initialValueHeading};

} // namespace ags
