// Whatever a server does instead of answering, to every kind of operation.

#include "FaultTest.h"

#include <ostream>

namespace {

class Faults : public FaultTest, public testing::WithParamInterface<FaultGroup>
{
};

TEST_P(Faults, NeverLookLikeAnAnswer)
{
    for (const Fault& fault : GetParam().faults) {
        play(fault);
    }
    report(static_cast<int>(GetParam().faults.size()));
}

INSTANTIATE_TEST_SUITE_P(Wire, Faults, testing::ValuesIn(faultGroups()),
                         [](const auto& group) { return std::string(group.param.name); });

} // namespace

static void PrintTo(const FaultGroup& group, std::ostream* out)
{
    *out << group.name;
}
