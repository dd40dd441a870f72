#include "Suggestion.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

// Insertions, deletions, replacements and swaps of neighbours that make one text into the other (optimal
// string alignment distance).
int distance(const QString& left, const QString& right)
{
    QVector<int> beforeLast;
    QVector<int> last(right.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (int i = 1; i <= left.size(); ++i) {
        QVector<int> row(right.size() + 1, i);
        for (int j = 1; j <= right.size(); ++j) {
            const bool isSame = left.at(i - 1) == right.at(j - 1);
            row[j] = std::min({last[j - 1] + (isSame ? 0 : 1), last[j] + 1, row[j - 1] + 1});
            const bool isSwap =
                i > 1 && j > 1 && left.at(i - 1) == right.at(j - 2) && left.at(i - 2) == right.at(j - 1);
            if (isSwap) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = last;
        last = row;
    }
    return last.constLast();
}

} // namespace

QString closest(const QString& word, const QStringList& candidates)
{
    constexpr int lettersPerSlip = 3;
    QString best;
    int leastDistance = std::max(1, word.size() / lettersPerSlip) + 1;
    for (const QString& candidate : candidates) {
        const bool isBeginning = word.size() > 1 && candidate.startsWith(word);
        const int slips = isBeginning ? 1 : distance(word, candidate);
        if (slips < leastDistance) {
            leastDistance = slips;
            best = candidate;
        }
    }
    return best;
}
