#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace monitorservice::test {

/// The same draws everywhere: std::uniform_int_distribution differs between libraries.
class Chance
{
public:
    explicit Chance(unsigned seed) : m_engine(seed) {}

    /// A number below `end`.
    std::size_t below(std::size_t end) { return m_engine() % end; }
    bool once(std::size_t in) { return below(in) == 0; }

    template <typename Item>
    const Item& of(const std::vector<Item>& items)
    {
        return items[below(items.size())];
    }

private:
    std::mt19937 m_engine;
};

} // namespace monitorservice::test
