#pragma once

#include "PagedReading.h"
#include "Session.h"

#include <QString>

namespace CLI {
class App;
}

/// Which part of a list the user wants.
struct PageOptions
{
    int skip = 0;
    int limit = paging::pageRows;
    bool isAll = false;
};

/// Adds --skip, --limit and --all.
void addPageOptions(CLI::App& app, PageOptions& options);

namespace pages {

/// The rows that `options` asks for; says so when the page ends before the list does.
template <typename ReadPage, typename ReadCount>
auto read(Session& session, const PageOptions& options, const QString& what, ReadPage readPage,
          ReadCount readCount)
{
    if (options.isAll) {
        return paging::readAll(what, readPage, readCount);
    }
    const auto rows = readPage(options.skip, options.limit);
    const int end = options.skip + rows.size();
    const int count = rows.size() < options.limit ? end : readCount();
    if (count > end) {
        session.noteAfterwards(QStringLiteral("%1 of %2 shown; --skip %3 continues, --all shows everything")
                                   .arg(rows.size())
                                   .arg(count)
                                   .arg(end));
    }
    return rows;
}

} // namespace pages
