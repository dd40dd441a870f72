#include "store/sqlite/SampleRows.h"

namespace monitorservice {

void readSample(const SqliteStatement& row, Sample& sample)
{
    sample.time = row.integer(0);
    sample.count = static_cast<std::int32_t>(row.integer(1));
    sample.offsetMinutes = offsetIn(row, 2);
    sample.value = row.real(3);
    sample.timeFlag = row.view(4);
}

Sample sampleOf(const SqliteStatement& row)
{
    Sample sample;
    readSample(row, sample);
    return sample;
}

std::optional<int> offsetIn(const SqliteStatement& row, int column)
{
    return row.isNull(column) ? std::nullopt : std::optional(static_cast<int>(row.integer(column)));
}

std::optional<std::int64_t> offsetColumn(const std::optional<int>& offsetMinutes)
{
    return offsetMinutes ? std::optional<std::int64_t>(*offsetMinutes) : std::nullopt;
}

} // namespace monitorservice
