#pragma once

#include "import/ImportNote.h"

#include <functional>

/// What an import tells and asks while it runs. Neither may start another operation of the same session.
struct ImportCallbacks
{
    /// Samples delivered so far, of all of them: at first 0, then after every request.
    std::function<void(int delivered, int total)> onProgress = [](int, int) {
    };
    ImportNotes onNote = [](const ImportNote&) {
    };
    /// Whether the user wants it to end; asked before every request that delivers. Requests under way are
    /// ended by NetworkManager::abortAll(). What is in stays, and a Failure (Cancelled) tells how much.
    std::function<bool()> isCancelled = [] {
        return false;
    };
};
