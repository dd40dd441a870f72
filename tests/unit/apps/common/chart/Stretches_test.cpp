#include "chart/Stretches.h"

#include <gtest/gtest.h>

namespace {

QVector<QPointF> at(const QVector<double>& days)
{
    QVector<QPointF> points;
    for (const double day : days) {
        points.append({day, day * 10.0});
    }
    return points;
}

QVector<int> lengths(const QVector<double>& days)
{
    QVector<int> found;
    for (const QVector<QPointF>& stretch : chart::stretches(at(days))) {
        found.append(stretch.size());
    }
    return found;
}

} // namespace

TEST(Stretches, AreCutWhereNothingWasMeasuredForLong)
{
    EXPECT_EQ(lengths({1, 2, 3, 10, 11, 12}), (QVector<int>{3, 3}));
    EXPECT_EQ(lengths({1, 2, 10}), (QVector<int>{2, 1}));
    EXPECT_EQ(lengths({1, 9, 10}), (QVector<int>{1, 2}));
}

TEST(Stretches, AreNotCutWhereReadingsBecomeRarer)
{
    EXPECT_EQ(lengths({1, 2, 3, 10, 17, 24}), (QVector<int>{6}));
    EXPECT_EQ(lengths({1, 8, 15, 16, 17}), (QVector<int>{5}));
    EXPECT_EQ(lengths({1, 2, 5, 6}), (QVector<int>{4})); // a weekend
}

TEST(Stretches, KeepEveryPoint)
{
    EXPECT_EQ(lengths({}), QVector<int>{});
    EXPECT_EQ(lengths({1}), (QVector<int>{1}));
    EXPECT_EQ(lengths({1, 100}), (QVector<int>{2}));
    const QVector<QVector<QPointF>> cut = chart::stretches(at({1, 2, 3, 10, 11}));
    QVector<QPointF> joined;
    for (const QVector<QPointF>& stretch : cut) {
        joined += stretch;
    }
    EXPECT_EQ(joined, at({1, 2, 3, 10, 11}));
}
