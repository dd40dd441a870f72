#include "import/MissingRights.h"

QStringList missingRights(ServiceSession& session, const QSet<QString>& categories, bool corrects)
{
    QStringList ordered = categories.values();
    ordered.sort();
    QStringList missing;
    for (const QString& category : qAsConst(ordered)) {
        const QString purpose = QStringLiteral("ask whether you may deliver to \"%1\"").arg(category);
        const bool mayCreate =
            session.ask(purpose, [&] { return session.projectData().canCreateMonitoring(category); });
        if (!mayCreate) {
            missing.append(
                QStringLiteral("the token may not create data of category \"%1\": the service would refuse "
                               "this import")
                    .arg(category));
            continue;
        }
        const bool mayEdit = !corrects || session.ask(purpose, [&] {
            return session.projectData().canEditMonitoring(category);
        });
        if (!mayEdit) {
            missing.append(
                QStringLiteral("the token may not edit data of category \"%1\": the service would refuse "
                               "the corrections of samples that it holds")
                    .arg(category));
        }
    }
    return missing;
}
