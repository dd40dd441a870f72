#include "PagedReading.h"

#include <QList>

#include <gtest/gtest.h>

#include <functional>

namespace {

struct Row
{
    QString id;
};

// A list held elsewhere, which may change before each page is read.
class ChangingList
{
public:
    explicit ChangingList(int size)
    {
        for (int i = 0; i < size; ++i) {
            add();
        }
    }

    void add() { m_rows.append({QString::number(m_next++)}); }
    void removeAt(int index) { m_rows.removeAt(index); }
    void insertFirst() { m_rows.prepend({QString::number(m_next++)}); }

    QStringList identifiers() const { return identifiersOf(m_rows); }

    static QStringList identifiersOf(const QList<Row>& rows)
    {
        QStringList identifiers;
        for (const Row& row : rows) {
            identifiers.append(row.id);
        }
        return identifiers;
    }

    std::optional<QList<Row>> readOnce()
    {
        return paging::readOnce([this](int skip, int limit) { return page(skip, limit); },
                                [this] { return count(); }, pageSize);
    }

    std::optional<QList<Row>> readEverything(int attempts)
    {
        return paging::readEverything([this](int skip, int limit) { return page(skip, limit); },
                                      [this] { return count(); }, pageSize, attempts);
    }

    // Called before the page of that number (from 1) is read; 0: before the count.
    std::function<void(int)> onRead = [](int) {
    };
    int pagesRead = 0;

    static constexpr int pageSize = 4;

private:
    QList<Row> page(int skip, int limit)
    {
        onRead(++pagesRead);
        return m_rows.mid(skip, limit);
    }

    int count()
    {
        onRead(0);
        return m_rows.size();
    }

    QList<Row> m_rows;
    int m_next = 0;
};

} // namespace

TEST(PagedReading, GivesEveryRowOnceWhateverTheSize)
{
    for (int size = 0; size < 30; ++size) {
        ChangingList list(size);
        const auto rows = list.readOnce();
        ASSERT_TRUE(rows) << size;
        EXPECT_EQ(ChangingList::identifiersOf(*rows), list.identifiers()) << size;
    }
}

TEST(PagedReading, NoticesARowThatIsRemovedBetweenPages)
{
    ChangingList list(10);
    list.onRead = [&](int page) {
        if (page == 2) {
            list.removeAt(0);
        }
    };
    EXPECT_FALSE(list.readOnce());
}

TEST(PagedReading, NoticesARowThatIsInsertedBetweenPages)
{
    ChangingList list(10);
    list.onRead = [&](int page) {
        if (page == 2) {
            list.insertFirst();
        }
    };
    EXPECT_FALSE(list.readOnce());
}

TEST(PagedReading, NoticesAShiftThatTheCountHides)
{
    ChangingList list(10);
    list.onRead = [&](int page) {
        if (page == 2) {
            list.removeAt(0);
            list.add();
        }
    };
    EXPECT_FALSE(list.readOnce());
}

TEST(PagedReading, NoticesARowAddedAfterTheLastPage)
{
    ChangingList list(10);
    list.onRead = [&](int page) {
        if (page == 0) {
            list.add();
        }
    };
    EXPECT_FALSE(list.readOnce());
}

TEST(PagedReading, NoticesAListThatShrinksBelowTheNextPage)
{
    ChangingList list(8);
    list.onRead = [&](int page) {
        for (int i = 0; page == 2 && i < 6; ++i) {
            list.removeAt(0);
        }
    };
    EXPECT_FALSE(list.readOnce());
}

TEST(PagedReading, NoticesARepeatedIdentifier)
{
    const auto rows = paging::readOnce(
        [](int, int) {
            return QList<Row>{{QStringLiteral("1")}, {QStringLiteral("1")}};
        },
        [] { return 2; }, ChangingList::pageSize);
    EXPECT_FALSE(rows);
}

TEST(PagedReading, BeginsAnewAfterAChange)
{
    ChangingList list(10);
    bool hasChanged = false;
    list.onRead = [&](int page) {
        if (page == 2 && !hasChanged) {
            hasChanged = true;
            list.removeAt(0);
        }
    };
    const auto rows = list.readEverything(2);
    ASSERT_TRUE(rows);
    EXPECT_EQ(ChangingList::identifiersOf(*rows), list.identifiers());
}

TEST(PagedReading, GivesUpAfterItsAttempts)
{
    ChangingList list(10);
    list.onRead = [&](int page) {
        if (page == 0) {
            list.add();
        }
    };
    EXPECT_FALSE(list.readEverything(3));
}
