#include "chart/Words.h"

#include "Text.h"

#include <gtest/gtest.h>

TEST(Words, OfEveryLanguageSayTheSame)
{
    for (const chart::Words* words : {&chart::englishWords(), &chart::chineseWords()}) {
        for (const QString& text : {words->date, words->depth, words->alarm}) {
            EXPECT_FALSE(text.isEmpty());
            EXPECT_FALSE(text.contains("%"_q)) << text.toStdString();
        }
        for (const QString& text : {words->limit, words->warning, words->level, words->totalVariation,
                                    words->dailyVariation, words->increment, words->changeSincePrevious}) {
            EXPECT_EQ(text.count("%1"_q), 1) << text.toStdString();
            EXPECT_EQ(text.count("%"_q), 1) << text.toStdString();
        }
        EXPECT_TRUE(words->changeSince.arg("A"_q, "B"_q).contains("B"_q));
    }
}
