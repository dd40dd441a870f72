#include "query/PatternSearch.h"

#include "query/Pattern.h"
#include "query/QueryError.h"
#include "query/QuotedText.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstddef>
#include <new>

namespace monitorservice {

namespace {

constexpr std::uint32_t matchLimit = 5'000'000;
constexpr std::uint32_t heapLimitKibibytes = 20 * 1024;

// A search that is over before this limit at each place of the text, as most are, need not be counted.
constexpr std::uint32_t uncountedMatchLimit = 4;
constexpr std::size_t longestUncountedText = 256;
constexpr std::size_t longestUncountedPattern = 128;
// So many characters may be looked at for each step of the budget: a hundred thousand names, also at worst.
constexpr std::uint64_t uncountedCharactersPerStep = 20;

constexpr std::size_t smallestStack = 32 * 1024;
constexpr std::size_t largestStack = 1024 * 1024;

// How many characters a search may look at, at worst, before it meets the limit: at each place of the text
// the pattern's, and the rest of the text as often as the limit allows.
std::uint64_t mostCharacters(const Pattern& pattern, std::string_view subject)
{
    return (subject.size() + 1) * (pattern.text().size() + uncountedMatchLimit * subject.size() / 2);
}

int match(const pcre2_code* code, std::string_view subject, pcre2_match_data* data,
          pcre2_match_context* context)
{
    return pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), 0, 0, data,
                       context);
}

// What one search has used of the budget.
struct StepCount
{
    std::uint64_t& left;

    // Charged for each step besides the distance: an item that fails reads on in silence.
    std::uint64_t perStep;

    std::size_t position = 0;

    bool take(std::uint64_t steps)
    {
        left -= steps < left ? steps : left;
        return left > 0;
    }
};

// PCRE2 calls this before each item of a pattern that it tries.
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

PatternSearch::PatternSearch(std::uint64_t stepBudget)
    : m_stepsLeft(stepBudget), m_uncountedLeft(stepBudget * uncountedCharactersPerStep)
{
}

void PatternSearch::prepare()
{
    m_stack.reset(pcre2_jit_stack_create(smallestStack, largestStack, nullptr));
    m_counted = limited(matchLimit);
    m_uncounted = limited(uncountedMatchLimit);
    m_data.reset(pcre2_match_data_create(1, nullptr));
    if (!m_data) {
        throw std::bad_alloc();
    }
}

PatternSearch::Context PatternSearch::limited(std::uint32_t limit) const
{
    Context context(pcre2_match_context_create(nullptr));
    if (!context) {
        throw std::bad_alloc();
    }
    pcre2_set_match_limit(context.get(), limit);
    pcre2_set_depth_limit(context.get(), limit);
    pcre2_set_heap_limit(context.get(), heapLimitKibibytes);
    // No stack, as where there is no just-in-time compiler: PCRE2 then uses its own small one.
    pcre2_jit_stack_assign(context.get(), nullptr, m_stack.get());
    return context;
}

bool PatternSearch::finds(const Pattern& pattern, std::string_view subject)
{
    if (!m_data) {
        prepare();
    }
    const std::optional<bool> found = findsUncounted(pattern, subject);
    return found ? *found : findsCounted(pattern, subject);
}

// Nothing when it takes too many steps, or might.
std::optional<bool> PatternSearch::findsUncounted(const Pattern& pattern, std::string_view subject)
{
    const std::uint64_t characters = mostCharacters(pattern, subject);
    if (subject.size() > longestUncountedText || pattern.text().size() > longestUncountedPattern ||
        characters > m_uncountedLeft) {
        return std::nullopt;
    }
    m_uncountedLeft -= characters;
    const int result = match(pattern.uncounted(), subject, m_data.get(), m_uncounted.get());
    return result >= 0 || result == PCRE2_ERROR_NOMATCH ? std::optional(result >= 0) : std::nullopt;
}

bool PatternSearch::findsCounted(const Pattern& pattern, std::string_view subject)
{
    StepCount count{m_stepsLeft, 1 + subject.size() / 64};
    int result = PCRE2_ERROR_CALLOUT;
    if (count.take(count.perStep)) {
        pcre2_set_callout(m_counted.get(), countStep, &count);
        result = match(pattern.counted(), subject, m_data.get(), m_counted.get());
    }
    if (result < 0 && result != PCRE2_ERROR_NOMATCH) {
        throw QueryError(422, "where: pattern " + quotedText(pattern.text()) + " at " +
                                  quotedText(pattern.path()) + " takes too many steps");
    }
    return result >= 0;
}

} // namespace monitorservice
