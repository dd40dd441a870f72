#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

struct pcre2_real_jit_stack_8;
struct pcre2_real_match_context_8;
struct pcre2_real_match_data_8;

namespace monitorservice {

class Pattern;

/// Searches texts for patterns with one budget of steps for all searches. Steps are counted, not time, so the
/// same query over the same data always has the same answer. For use by one thread.
///
/// Counting takes most of the time of an ordinary search. So each search of a short text for a short pattern
/// is first tried without, with a small limit, as long as what such searches may cost at worst stays within
/// bounds.
class PatternSearch
{
public:
    /// About half a second on a machine of 2020.
    static constexpr std::uint64_t defaultStepBudget = 50'000'000;

    explicit PatternSearch(std::uint64_t stepBudget = defaultStepBudget);

    /// Whether `pattern` is found anywhere in `subject`, which is valid UTF-8. Throws QueryError with
    /// status 422 when the search ends at a limit.
    bool finds(const Pattern& pattern, std::string_view subject);

private:
    struct Free
    {
        void operator()(pcre2_real_jit_stack_8* stack) const;
        void operator()(pcre2_real_match_context_8* context) const;
        void operator()(pcre2_real_match_data_8* data) const;
    };

    using Context = std::unique_ptr<pcre2_real_match_context_8, Free>;

    void prepare();
    Context limited(std::uint32_t matchLimit) const;
    std::optional<bool> findsUncounted(const Pattern& pattern, std::string_view subject);
    bool findsCounted(const Pattern& pattern, std::string_view subject);

    std::uint64_t m_stepsLeft;
    std::uint64_t m_uncountedLeft;
    std::unique_ptr<pcre2_real_jit_stack_8, Free> m_stack;
    Context m_counted;
    Context m_uncounted;
    std::unique_ptr<pcre2_real_match_data_8, Free> m_data;
};

} // namespace monitorservice
