#include "PointSheets.h"

#include "Lookup.h"

#include <QMap>

namespace {

QStringList relationTexts(const QMap<QString, QStringList>& links)
{
    QStringList texts;
    for (auto link = links.cbegin(); link != links.cend(); ++link) {
        for (const QString& id : *link) {
            texts.append(QStringLiteral("%1=%2").arg(link.key(), id));
        }
    }
    return texts;
}

} // namespace

PointMeanings meaningsOf(const QList<RKPointLocation>& points, const PointSelection& selection)
{
    PointMeanings meanings;
    for (const RKPointLocation& point : points) {
        const std::optional<ReferenceValue> reference = selection.directory().toldReferenceOf(point.id);
        meanings.insert(point.id, {selection.subCategoryOf(point.id),
                                   reference ? std::make_optional(reference->value) : std::nullopt,
                                   selection.directory().initialValueOf(point.id)});
    }
    return meanings;
}

PointMeanings meaningsOf(Session& session, const QList<RKPointLocation>& points)
{
    QMap<QString, QList<RKPointLocation>> byMonitoring;
    for (const RKPointLocation& point : points) {
        byMonitoring[point.cellId].append(point);
    }
    PointMeanings meanings;
    for (auto some = byMonitoring.cbegin(); some != byMonitoring.cend(); ++some) {
        QStringList names;
        for (const RKPointLocation& point : *some) {
            names.append(point.name);
        }
        names.removeDuplicates();
        const RKMonitoring monitoring = lookup::monitoringById(session, some.key());
        const PointSelection selection(session, monitoring, names, {});
        const PointMeanings found = meaningsOf(*some, selection);
        for (auto meaning = found.cbegin(); meaning != found.cend(); ++meaning) {
            meanings.insert(meaning.key(), *meaning);
        }
    }
    return meanings;
}

Sheet pointSheet(Session& session, const QList<RKPointLocation>& points, const PointMeanings& meanings)
{
    Sheet sheet{{column::fixed("ID", "id"),
                 column::text("SUB-CATEGORY", "subCategoryName"),
                 column::text("NAME", "name"),
                 column::fixed("DEPTH", "depth"),
                 column::dispensable(1, column::fixed("SAMPLES", "samples")),
                 column::fixed("LATEST", "latestTime"),
                 column::dispensable(2, column::fixed("COUNT", "latestCount")),
                 column::fixed("VALUE", "latestValue"),
                 column::dispensable(3, column::text("RELATIONS", "links")),
                 column::unlisted("SUB-CATEGORY ID", "subCategoryId"),
                 column::unlisted("REFERENCE", "reference"),
                 column::unlisted("MONITORING", "cellName"),
                 column::unlisted("MONITORING ID", "cellId"),
                 column::unlisted("CATEGORY", "category"),
                 column::unlisted("DATA TYPE", "dataType"),
                 column::unlisted("OFFSET DIRECTION", "offsetDirection"),
                 column::unlisted("SAMPLES HELD", "insertCount"),
                 column::unlisted("LAST COUNT", "lastCount"),
                 column::unlisted("LAST TIME", "lastDate"),
                 column::unlisted("CREATED", "createdAt"),
                 column::unlisted("CREATED BY", "createdBy"),
                 column::unlisted("UPDATED", "updatedAt"),
                 column::unlisted("UPDATED BY", "updatedBy")},
                {}};
    lookup::readMonitoringNamesOf(session, points);
    for (const RKPointLocation& point : points) {
        // Of the samples that the condition chose; the point's own members tell of all of them.
        const bool hasSamples = !point.data.isEmpty();
        const RKPointLocationData latest = hasSamples ? point.data.constLast() : RKPointLocationData();
        const PointMeaning meaning = meanings.value(point.id);
        const std::optional<qint32> decimals = meaning.subCategory.decimals;
        sheet.rows.append(
            {point.id,
             noneIfEmpty(meaning.subCategory.name),
             point.name,
             noneIfEmpty(point.depth),
             point.data.size(),
             latest.time,
             hasSamples ? QVariant(latest.count) : QVariant(QString()),
             hasSamples ? cell::number(latest.value, decimals) : QVariant(QString()),
             relationTexts(point.links),
             noneIfEmpty(meaning.subCategory.id),
             meaning.reference ? cell::number(*meaning.reference, decimals) : QVariant(QString()),
             lookup::monitoringName(session, point.cellId),
             point.cellId,
             point.category,
             point.dataType,
             point.offsetDirection,
             point.insertCount,
             point.lastCount,
             point.lastDate,
             point.createdAt,
             point.createdBy,
             point.updatedAt,
             point.updatedBy});
    }
    return sheet;
}

Sheet sampleSheet(const QList<RKPointLocation>& points, const PointMeanings& meanings)
{
    Sheet sheet{{column::text("SUB-CATEGORY", "subCategory"), column::text("NAME", "name"),
                 column::fixed("DEPTH", "depth"), column::fixed("TIME", "time"),
                 column::fixed("COUNT", "count"), column::fixed("VALUE", "value"),
                 column::fixed("FLAG", "timeFlag"), column::unlisted("INITIAL VALUE", "initialValue")},
                {}};
    for (const RKPointLocation& point : points) {
        const QString depth = noneIfEmpty(point.depth);
        const PointMeaning meaning = meanings.value(point.id);
        const QVariant subCategory = noneIfEmpty(meaning.subCategory.name);
        const QVariant initialValue =
            meaning.initialValue ? QVariant(*meaning.initialValue) : QVariant(QString());
        for (const RKPointLocationData& sample : point.data) {
            sheet.rows.append({subCategory, point.name, depth, sample.time, sample.count,
                               cell::number(sample.value, meaning.subCategory.decimals), sample.timeFlag,
                               initialValue});
        }
    }
    return sheet;
}
