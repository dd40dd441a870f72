#pragma once

#include "Failure.h"
#include "PagedReading.h"
#include "Session.h"

#include <QString>

namespace CLI {
class App;
}

/// Rows that are asked for at a time, and shown when the user names no number.
constexpr int pageRows = 1000;

/// Which part of a list the user wants.
struct PageOptions
{
    int skip = 0;
    int limit = pageRows;
    bool isAll = false;
};

/// Adds --skip, --limit and --all.
void addPageOptions(CLI::App& app, PageOptions& options);

namespace pages {

constexpr int readingAttempts = 3;

/// Every row, or a Failure when the list would not hold still. `what` names the rows.
template <typename ReadPage, typename ReadCount>
auto readAll(const QString& what, ReadPage readPage, ReadCount readCount)
{
    const auto rows = paging::readEverything(readPage, readCount, pageRows, readingAttempts);
    if (!rows) {
        throw Failure(ExitCode::Failed,
                      QStringLiteral("cannot list all %1: they kept changing while they were "
                                     "read; try again")
                          .arg(what));
    }
    return *rows;
}

/// The rows that `options` asks for; says so when the page ends before the list does.
template <typename ReadPage, typename ReadCount>
auto read(Session& session, const PageOptions& options, const QString& what, ReadPage readPage,
          ReadCount readCount)
{
    if (options.isAll) {
        return readAll(what, readPage, readCount);
    }
    const auto rows = readPage(options.skip, options.limit);
    const int end = options.skip + rows.size();
    const int count = rows.size() < options.limit ? end : readCount();
    if (count > end) {
        session.noteAfterwards(
            QStringLiteral("shown are %1 of %2; --skip %3 continues, --all shows everything")
                .arg(rows.size())
                .arg(count)
                .arg(end));
    }
    return rows;
}

} // namespace pages
