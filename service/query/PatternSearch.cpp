#include "PatternSearch.h"

#include "InQuotes.h"
#include "Pattern.h"
#include "QueryError.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstddef>
#include <new>

namespace monitorservice {

namespace {

constexpr std::uint32_t kMatchLimit = 5'000'000;
constexpr std::uint32_t kHeapLimitKibibytes = 20 * 1024;
constexpr std::size_t kSmallestStack = 32 * 1024;
constexpr std::size_t kLargestStack = 1024 * 1024;

/// What one search has used of the budget.
struct StepCount
{
    std::uint64_t& left;

    /// Charged for each step besides the distance: an item that fails reads on in silence.
    std::uint64_t perStep;

    std::size_t position = 0;

    bool take(std::uint64_t steps)
    {
        left -= steps < left ? steps : left;
        return left > 0;
    }
};

/// PCRE2 calls this before each item of a pattern that it tries.
int countStep(pcre2_callout_block* block, void* data)
{
    auto& count = *static_cast<StepCount*>(data);
    const std::size_t position = block->current_position;
    const std::size_t distance =
        position > count.position ? position - count.position : count.position - position;
    count.position = position;
    return count.take(count.perStep + distance / 16) ? 0 : PCRE2_ERROR_CALLOUT;
}

} // namespace

void PatternSearch::Free::operator()(pcre2_jit_stack* stack) const
{
    pcre2_jit_stack_free(stack);
}

void PatternSearch::Free::operator()(pcre2_match_context* context) const
{
    pcre2_match_context_free(context);
}

void PatternSearch::Free::operator()(pcre2_match_data* data) const
{
    pcre2_match_data_free(data);
}

PatternSearch::PatternSearch(std::uint64_t stepBudget) : m_stepsLeft(stepBudget) {}

void PatternSearch::prepare()
{
    m_stack.reset(pcre2_jit_stack_create(kSmallestStack, kLargestStack, nullptr));
    m_context.reset(pcre2_match_context_create(nullptr));
    m_data.reset(pcre2_match_data_create(1, nullptr));
    if (!m_context || !m_data)
        throw std::bad_alloc();
    pcre2_set_match_limit(m_context.get(), kMatchLimit);
    pcre2_set_depth_limit(m_context.get(), kMatchLimit);
    pcre2_set_heap_limit(m_context.get(), kHeapLimitKibibytes);
    // No stack, as where there is no just-in-time compiler: PCRE2 then uses its own small one.
    pcre2_jit_stack_assign(m_context.get(), nullptr, m_stack.get());
}

bool PatternSearch::finds(const Pattern& pattern, std::string_view subject)
{
    if (!m_data)
        prepare();
    StepCount count{m_stepsLeft, 1 + subject.size() / 64};
    int result = PCRE2_ERROR_CALLOUT;
    if (count.take(count.perStep)) {
        pcre2_set_callout(m_context.get(), countStep, &count);
        result = pcre2_match(pattern.code(), reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), 0,
                             0, m_data.get(), m_context.get());
    }
    if (result < 0 && result != PCRE2_ERROR_NOMATCH)
        throw QueryError(422, "where: pattern " + inQuotes(pattern.text()) + " at " +
                                  inQuotes(pattern.path()) + " takes too many steps");
    return result >= 0;
}

} // namespace monitorservice
