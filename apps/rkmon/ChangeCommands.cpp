#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "Pages.h"
#include "Period.h"

#include <QJsonDocument>
#include <RKPub.h>

namespace {

struct ChangeOptions
{
    Period period;
    QString action;
    QString author;
    QString cell;
    QString subject;
    QString category;
    PageOptions page;
};

QString valueText(const QJsonValue& value)
{
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2)); // without the array's brackets
}

// The members that are not the same before and after, with both values; nothing of what came or went whole.
QStringList differences(const AuditEntry& entry)
{
    QStringList texts;
    const QJsonObject before = entry.before.toObject();
    const QJsonObject after = entry.after.toObject();
    if (before.isEmpty() || after.isEmpty()) {
        return texts;
    }
    const QStringList members = after.keys();
    for (const QString& member : members) {
        const bool isStamp = member == QLatin1String("updatedAt") || member == QLatin1String("updatedBy");
        if (!isStamp && before.value(member) != after.value(member)) {
            texts.append(QStringLiteral("%1: %2 \u2192 %3")
                             .arg(member, valueText(before.value(member)), valueText(after.value(member))));
        }
    }
    return texts;
}

Sheet changeSheet(const QList<AuditEntry>& entries)
{
    Sheet sheet{
        {column::fixed("TIME", "time"), column::dispensable(1, column::text("BY", "author")),
         column::text("ACTION", "action"), column::text("NAME", "name"), column::text("CHANGED", "changed"),
         column::unlisted("CATEGORY", "category"), column::unlisted("ID", "id"),
         column::unlisted("SUBJECT", "subject"), column::unlisted("MONITORING ID", "cellId"),
         column::unlisted("SUB-CATEGORY ID", "subCategoryId"), column::unlisted("DELIVERY", "deliveryId"),
         column::unlisted("BEFORE", "before"), column::unlisted("AFTER", "after")},
        {}};
    for (const AuditEntry& entry : entries) {
        sheet.rows.append({entry.time, entry.author, entry.action, entry.name, differences(entry),
                           noneIfEmpty(entry.category), entry.id, entry.subject, noneIfEmpty(entry.cellId),
                           noneIfEmpty(entry.subCategoryId), noneIfEmpty(entry.deliveryId),
                           entry.before.toVariant(), entry.after.toVariant()});
    }
    return sheet;
}

AuditQuery queryOf(Session& session, const ChangeOptions& options)
{
    AuditQuery query;
    RKTimePeriod period;
    restrictTo(options.period, session.zoneOf(), period);
    if (!period.isAllTime) {
        query.where.insert(
            QStringLiteral("createdAt"),
            QJsonObject{{QStringLiteral("$gte"), RKPub::getQStringByDateTime(period.startTime)},
                        {QStringLiteral("$lt"), RKPub::getQStringByDateTime(period.endTime.addDays(1))}});
    }
    if (!options.action.isEmpty()) {
        query.where.insert(QStringLiteral("action"), QJsonObject{{QStringLiteral("$regex"), options.action}});
    }
    if (!options.author.isEmpty()) {
        query.where.insert(QStringLiteral("createdBy"), options.author);
    }
    if (!options.cell.isEmpty()) {
        query.where.insert(QStringLiteral("cellId"), lookup::monitoring(session, options.cell).id);
    }
    if (!options.subject.isEmpty()) {
        query.where.insert(QStringLiteral("subject"), options.subject);
    }
    if (!options.category.isEmpty()) {
        query.where.insert(QStringLiteral("category"), options.category);
    }
    return query;
}

ExitCode listChanges(Session& session, const ChangeOptions& options)
{
    session.projectData(); // refused first when there is no project
    const AuditQuery query = queryOf(session, options);
    const QList<AuditEntry> entries = pages::read(
        session, options.page, QStringLiteral("changes"),
        [&](int skip, int limit) {
            return session.extensions().changes(session.project(), query, skip, limit);
        },
        [&] { return session.extensions().changeCount(session.project(), query); });
    session.output().addList(changeSheet(entries));
    return ExitCode::Success;
}

} // namespace

void addChangeCommands(CLI::App& root, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        root, "changes", "List who changed what, newest first: the audit trail", chosen, listChanges);
    addPeriodOptions(app, values->period, "Made at this time or later", "Made on this day or earlier");
    options::addText(app, "--action", values->action,
                     "What happened contains this regular expression: group, sample.corrected")
        ->type_name("PATTERN");
    options::addText(app, "--by", values->author, "Made by this owner of a token")->type_name("OWNER");
    options::addCell(app, values->cell);
    options::addText(app, "--category", values->category, "Of this category")->type_name("CATEGORY");
    options::addIdentifier(app, "--subject", values->subject, "Identifier of what was changed");
    addPageOptions(app, values->page);
    options::setExamples(app, "  rkmon changes --cell VH --since 2026-03-01\n"
                              "  rkmon changes --action 'deleted$' --json");
}
