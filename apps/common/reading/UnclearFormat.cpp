#include "reading/UnclearFormat.h"

void UnclearFormat::add(const UnclearFormat& other)
{
    decimalSign = decimalSign || other.decimalSign;
    delimiter = delimiter || other.delimiter;
    utcOffset = utcOffset || other.utcOffset;
    doubledHour = doubledHour || other.doubledHour;
    absentColumns = absentColumns || other.absentColumns;
    names += other.names;
    names.removeDuplicates();
    timeFormats += other.timeFormats;
    timeFormats.removeDuplicates();
    encodings += other.encodings;
    encodings.removeDuplicates();
}
