#include "Confirmation.h"

#include "Failure.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>

void addConfirmation(CLI::App& app, Confirmation& confirmation)
{
    app.add_flag("-y,--yes", confirmation.isGiven, "Do not ask");
}

bool isConfirmed(Session& session, const Confirmation& confirmation, const std::function<QString()>& question)
{
    if (confirmation.isGiven) {
        return true;
    }
    if (!terminal::canAsk()) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("will not do this without asking, and nobody can be asked; --yes confirms"));
    }
    if (terminal::confirm(question())) {
        return true;
    }
    session.note(QStringLiteral("nothing was changed"));
    return false;
}
