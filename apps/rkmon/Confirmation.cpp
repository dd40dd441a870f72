#include "Confirmation.h"

#include "Failure.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>

void addConfirmationOption(CLI::App& app, bool& isConfirmed)
{
    app.add_flag("-y,--yes", isConfirmed, "Do not ask");
}

bool confirmed(Session& session, bool isConfirmed, const std::function<QString()>& question)
{
    if (isConfirmed) {
        return true;
    }
    if (!terminal::canAsk()) {
        throw Failure(ExitCode::Usage,
                      QStringLiteral("refusing to delete without being able to ask; --yes confirms"));
    }
    if (terminal::confirm(question())) {
        return true;
    }
    session.note(QStringLiteral("not deleted"));
    return false;
}
