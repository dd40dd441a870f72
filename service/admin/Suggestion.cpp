#include "admin/Suggestion.h"

#include <algorithm>
#include <numeric>

namespace monitorservice {

namespace {

// One element for each character, so that a slip in "Böschung" counts once.
std::vector<std::string> charactersOf(const std::string& text)
{
    std::vector<std::string> characters;
    for (const char byte : text) {
        const bool continues = (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
        if (characters.empty() || !continues) {
            characters.emplace_back();
        }
        characters.back() += byte;
    }
    return characters;
}

// How many characters must be inserted, deleted, replaced or swapped with their neighbour to turn one text
// into the other.
std::size_t slipsBetween(const std::string& given, const std::string& meant)
{
    const std::vector<std::string> from = charactersOf(given);
    const std::vector<std::string> to = charactersOf(meant);
    std::vector<std::vector<std::size_t>> slips(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    std::iota(slips[0].begin(), slips[0].end(), 0);
    for (std::size_t i = 1; i <= from.size(); ++i) {
        slips[i][0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = slips[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            slips[i][j] = std::min({replaced, slips[i - 1][j] + 1, slips[i][j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
            }
        }
    }
    return slips[from.size()][to.size()];
}

bool isBeginningOf(const std::string& word, const std::string& candidate)
{
    return word.size() > 1 && candidate.compare(0, word.size(), word) == 0;
}

} // namespace

std::string closest(const std::string& word, const std::vector<std::string>& candidates)
{
    constexpr std::size_t charactersPerSlip = 3;
    const std::size_t mostSlips = std::max<std::size_t>(1, charactersOf(word).size() / charactersPerSlip);
    std::string best;
    std::size_t fewest = mostSlips + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t slips = isBeginningOf(word, candidate) ? 1 : slipsBetween(word, candidate);
        if (slips < fewest) {
            fewest = slips;
            best = candidate;
        }
    }
    return best;
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates)
{
    const std::string best = closest(word, candidates);
    return best.empty() ? best : "; did you mean \"" + best + "\"?";
}

std::string didYouMeanIdentifier(const std::string& word,
                                 const std::vector<std::pair<std::string, std::string>>& candidates)
{
    std::vector<std::string> names;
    names.reserve(candidates.size());
    for (const auto& [id, name] : candidates) {
        names.push_back(name);
    }
    const std::string best = closest(word, names);
    const auto meant = std::find_if(candidates.begin(), candidates.end(),
                                    [&best](const auto& candidate) { return candidate.second == best; });
    if (best.empty() || meant == candidates.end()) {
        return {};
    }
    return "; did you mean " + meant->first + " (\"" + best + "\")?";
}

} // namespace monitorservice
