#include "import/ImportOutcome.h"

#include <algorithm>
#include <tuple>

namespace {

// Depths that are numbers go by their size.
auto orderOf(const CorrectedSample& sample)
{
    return std::make_tuple(sample.name, sample.depth.toDouble(), sample.depth,
                           sample.time.toMSecsSinceEpoch(), sample.count);
}

} // namespace

void sortCorrections(QVector<CorrectedSample>& corrections)
{
    std::stable_sort(corrections.begin(), corrections.end(),
                     [](const CorrectedSample& left, const CorrectedSample& right) {
                         return orderOf(left) < orderOf(right);
                     });
    if (corrections.size() > SampleOutcome::keptCorrections) {
        corrections.resize(SampleOutcome::keptCorrections);
    }
}
