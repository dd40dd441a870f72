#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"

#include <QElapsedTimer>
#include <QVector>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace {

struct PingOptions
{
    int count = 5;
};

// Names of projects by their identifiers, as far as the service tells them.
QMap<QString, QString> projectNames(Session& session)
{
    QMap<QString, QString> names;
    if (session.extensions().has(Extension::Projects)) {
        const QList<ServiceProject> projects = session.extensions().projects();
        for (const ServiceProject& project : projects) {
            names.insert(project.id, project.name);
        }
    }
    return names;
}

// What people see where none means all of them.
QVariant everyIfNone(const std::optional<QString>& text, const char* every)
{
    return text ? QVariant(*text) : cell::shownAs(QString(), QLatin1String(every));
}

ExitCode showWho(Session& session, const NoOptions&)
{
    const ServiceAbout about = session.extensions().about();
    const QMap<QString, QString> names = projectNames(session);
    Sheet sheet{{column::text("OWNER", "owner"), column::text("PROJECT", "projectName"),
                 column::dispensable(1, column::fixed("PROJECT ID", "projectId")),
                 column::text("CATEGORY", "category"), column::text("RIGHTS", "rights")},
                {}};
    for (const HeldRights& held : about.rights) {
        const QString name = names.value(held.project.value_or(QString()));
        sheet.rows.append({about.owner, noneIfEmpty(name), everyIfNone(held.project, "(whole service)"),
                           everyIfNone(held.category, "(every)"), held.rights});
    }
    if (about.rights.isEmpty()) {
        sheet.rows.append({about.owner, QString(), QString(), QString(), QStringList()});
        session.noteAfterwards(QStringLiteral("the token has no rights"));
    }
    session.output().addList(sheet);
    return ExitCode::Success;
}

// Milliseconds that each of several requests took.
QVector<double> roundTrips(Session& session, int count)
{
    constexpr double nanosecondsPerMillisecond = 1e6;
    lookup::categories(session); // opens the connection
    QVector<double> times;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        lookup::categories(session);
        times.append(static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerMillisecond);
    }
    std::sort(times.begin(), times.end());
    return times;
}

double medianOf(const QVector<double>& sorted)
{
    const int middle = sorted.size() / 2;
    const bool isEven = sorted.size() % 2 == 0;
    return isEven ? (sorted[middle - 1] + sorted[middle]) / 2 : sorted[middle];
}

ExitCode ping(Session& session, const PingOptions& options)
{
    constexpr int decimals = 2;
    const QVector<double> times = roundTrips(session, options.count);
    const bool isTelling = session.extensions().has(Extension::About);
    const ServiceAbout about = isTelling ? session.extensions().about() : ServiceAbout();
    session.output().addRecord(
        {{column::fixed("ADDRESS", "address"), column::text("VERSION", "version"),
          column::text("EXTENSIONS", "extensions"), column::fixed("REQUESTS", "requests"),
          column::fixed("MEDIAN (MS)", "medianMilliseconds"),
          column::fixed("LEAST (MS)", "leastMilliseconds")},
         {{session.configuration().baseApi, noneIfEmpty(about.version), about.extensions, times.size(),
           cell::number(medianOf(times), decimals), cell::number(times.constFirst(), decimals)}}});
    return ExitCode::Success;
}

} // namespace

void addServiceCommands(CLI::App& root, Command& chosen)
{
    const auto [who, unused] = options::addSubcommand(
        root, "whoami", "Show whose the token is, and what it permits", chosen, showWho);
    Q_UNUSED(unused)
    options::setExamples(who, "  rkmon whoami\n"
                              "  rkmon whoami --json --token-file editor.token");

    const auto [app, values] =
        options::addSubcommand(root, "ping", "Ask whether the service answers, and how soon", chosen, ping);
    constexpr int mostRequests = 1000;
    app.add_option("--count", values->count, "How many requests are measured, 5 when absent")
        ->type_name("N")
        ->check(CLI::Range(1, mostRequests).description(""));
    options::setExamples(app, "  rkmon ping\n"
                              "  rkmon ping --count 100 --base-api https://monitoring.example/");
}
