#include "Pages.h"

#include <CLI/CLI.hpp>

#include <limits>

void addPageOptions(CLI::App& app, PageOptions& options)
{
    CLI::Option* skip = app.add_option("--skip", options.skip, "Leave out the first N")
                            ->type_name("N")
                            ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""));
    CLI::Option* limit = app.add_option("--limit", options.limit, "Show at most N, 1000 when absent")
                             ->type_name("N")
                             ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
    app.add_flag("--all", options.isAll, "Show everything, however many pages it takes")
        ->excludes(skip)
        ->excludes(limit);
}
