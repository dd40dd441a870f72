#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

/// What every harness defines: tries one input. libFuzzer calls it, or ReplayCorpus.cpp.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the program, which makes the input a finding, unless the property holds. `detail` makes the text that
/// shows what broke it; called only then, since most inputs break nothing.
template <typename Detail>
void require(bool holds, const char* property, const Detail& detail)
{
    if (holds) {
        return;
    }
    std::cerr << "property broken: " << property << "\n" << detail() << std::endl;
    std::abort();
}

inline void require(bool holds, const char* property)
{
    require(holds, property, [] { return ""; });
}

} // namespace fuzz
