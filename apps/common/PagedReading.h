#pragma once

#include "Failure.h"

#include <QSet>
#include <QString>

#include <optional>
#include <utility>

/// Reading a list that others may change meanwhile, page by page.
namespace paging {

/// Rows that are asked for at a time: the most that the service gives.
constexpr int pageRows = 1000;

constexpr int readingAttempts = 3;

template <typename Rows>
bool hasRepeatedIdentifier(const Rows& rows)
{
    QSet<QString> identifiers;
    identifiers.reserve(rows.size());
    for (const auto& row : rows) {
        identifiers.insert(row.id);
    }
    return identifiers.size() != rows.size();
}

/// All rows, or nothing when the list changed in a way that could have lost or duplicated one; the caller
/// then starts again. `readPage(skip, limit)` gives records with a member `id`, fewer than `limit` only at
/// the end; `readCount()` gives the number of all rows. `pageSize` is at least 2.
template <typename ReadPage, typename ReadCount>
auto readOnce(ReadPage readPage, ReadCount readCount, int pageSize) -> std::optional<decltype(readPage(0, 0))>
{
    auto rows = readPage(0, pageSize);
    int received = rows.size();
    while (received == pageSize) {
        // Pages overlap by one row: when it is not the same row in both, rows were inserted or removed before
        // it, which the count alone would not show when one came and another went.
        auto page = readPage(rows.size() - 1, pageSize);
        received = page.size();
        if (page.isEmpty() || page.constFirst().id != rows.constLast().id) {
            return std::nullopt;
        }
        page.removeFirst();
        rows.append(page);
    }
    if (rows.size() != readCount() || hasRepeatedIdentifier(rows)) {
        return std::nullopt;
    }
    return rows;
}

/// readOnce(), started again up to `attempts` times in all.
template <typename ReadPage, typename ReadCount>
auto readEverything(ReadPage readPage, ReadCount readCount, int pageSize, int attempts)
    -> std::optional<decltype(readPage(0, 0))>
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (auto rows = readOnce(readPage, readCount, pageSize)) {
            return rows;
        }
    }
    return std::nullopt;
}

/// Every row, or a Failure when the list kept changing. `what` names the rows.
template <typename ReadPage, typename ReadCount>
auto readAll(const QString& what, ReadPage readPage, ReadCount readCount)
{
    auto rows = readEverything(readPage, readCount, pageRows, readingAttempts);
    if (!rows) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("cannot list all %1: they kept changing while they were read; try again")
                          .arg(what));
    }
    return *std::move(rows);
}

} // namespace paging
