#pragma once

#include <string>
#include <utility>
#include <vector>

namespace monitorservice {

/// The candidate that `word` is most likely a slip of the keyboard for; empty when none is close. Texts are
/// UTF-8.
std::string closest(const std::string& word, const std::vector<std::string>& candidates);

/// What ends a message about a word that is not known: `; did you mean "settlement"?`. Empty when no
/// candidate is close.
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates);

/// The same where identifiers are asked for and names are easily given: `; did you mean 01a1… ("Pit")?`. The
/// candidates are pairs of an identifier and a name.
std::string didYouMeanIdentifier(const std::string& word,
                                 const std::vector<std::pair<std::string, std::string>>& candidates);

} // namespace monitorservice
