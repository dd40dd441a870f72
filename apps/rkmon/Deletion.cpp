#include "Deletion.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "Terminal.h"

CLI::App& addDeleteCommand(CLI::App& group, Command& chosen, const char* description, const char* identifier,
                           ExitCode (*run)(Session&, const DeleteOptions&))
{
    const auto [app, values] = options::addSubcommand(group, "delete", description, chosen, run);
    options::addIdentifier(app, "ID", values->id, identifier)->required();
    app.add_flag("-y,--yes", values->isConfirmed, "Do not ask");
    return app;
}

bool confirmed(Session& session, const DeleteOptions& options, const std::function<QString()>& question)
{
    if (options.isConfirmed) {
        return true;
    }
    if (!terminal::canAsk()) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("will not delete without asking, and nobody can be asked; --yes confirms"));
    }
    if (terminal::confirm(question())) {
        return true;
    }
    session.note(QStringLiteral("not deleted"));
    return false;
}
