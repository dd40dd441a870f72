#include "import/ProjectFile.h"

#include "DailyLimit.h"
#include "Failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace {

// An object of the file, read member by member: an error is reported with the member's place.
class Node
{
public:
    Node(const QString& file, const QString& place, const QJsonValue& value) : m_file(file), m_place(place)
    {
        if (!value.isObject()) {
            fail(QStringLiteral("must be an object"));
        }
        m_object = value.toObject();
    }

    [[noreturn]] void fail(const QString& reason) const
    {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: %2 %3")
                          .arg(m_file, m_place.isEmpty() ? QStringLiteral("it") : m_place, reason));
    }

    QString text(const char* member) const
    {
        const QJsonValue value = m_object.value(QLatin1String(member));
        const QString text = value.toString();
        if (!value.isString() || text.trimmed().isEmpty()) {
            failAt(member, QStringLiteral("must be a text that is not empty"));
        }
        return text;
    }

    QString textOr(const char* member, const QString& otherwise) const
    {
        return has(member) ? text(member) : otherwise;
    }

    // Not negative; 0 when it is not there.
    double limit(const char* member) const
    {
        const QJsonValue value = m_object.value(QLatin1String(member));
        const double number = value.toDouble(0.0);
        if ((!value.isUndefined() && !value.isDouble()) || number < 0.0 || !std::isfinite(number)) {
            failAt(member, QStringLiteral("must be a number that is not negative"));
        }
        return number;
    }

    QStringList texts(const char* member) const
    {
        QStringList result;
        const QJsonArray elements = array(member);
        for (const QJsonValue& element : elements) {
            if (!element.isString() || element.toString().trimmed().isEmpty()) {
                failAt(member, QStringLiteral("must be a list of texts that are not empty"));
            }
            result.append(element.toString());
        }
        return result;
    }

    QList<Node> nodes(const char* member) const
    {
        QList<Node> result;
        const QJsonArray elements = array(member);
        for (const QJsonValue& element : elements) {
            result.append(
                Node(m_file, QStringLiteral("%1[%2]").arg(placeOf(member)).arg(result.size()), element));
        }
        return result;
    }

    // A misspelt member would otherwise have no effect, silently.
    void allowOnly(const QStringList& members) const
    {
        for (const QString& member : m_object.keys()) {
            if (!members.contains(member)) {
                fail(QStringLiteral("has an unknown member \"%1\"; known are %2")
                         .arg(member, members.join(QStringLiteral(", "))));
            }
        }
    }

    bool has(const char* member) const { return m_object.contains(QLatin1String(member)); }

    [[noreturn]] void failAt(const char* member, const QString& reason) const
    {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1: %2 %3").arg(m_file, placeOf(member), reason));
    }

private:
    QString placeOf(const char* member) const
    {
        const QString name = QLatin1String(member);
        return m_place.isEmpty() ? name : m_place + QLatin1Char('.') + name;
    }

    QJsonArray array(const char* member) const
    {
        const QJsonValue value = m_object.value(QLatin1String(member));
        if (!value.isUndefined() && !value.isArray()) {
            failAt(member, QStringLiteral("must be a list"));
        }
        return value.toArray();
    }

    QString m_file;
    QString m_place;
    QJsonObject m_object;
};

QString listOf(const QStringList& members)
{
    return members.isEmpty() ? QStringLiteral("one of the list, which is empty")
                             : QStringLiteral("one of ") + members.join(QStringLiteral(", "));
}

QString requireKnown(const Node& node, const char* member, const QStringList& known)
{
    const QString text = node.text(member);
    if (!known.contains(text)) {
        node.failAt(member, QStringLiteral("\"%1\" must be %2").arg(text, listOf(known)));
    }
    return text;
}

RKMonitoringSubCategory subCategoryOf(const Node& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("category"), QStringLiteral("name"), QStringLiteral("alias")});
    RKMonitoringSubCategory subCategory;
    subCategory.category = requireKnown(node, "category", project.categories);
    subCategory.name = node.text("name");
    subCategory.alias = node.textOr("alias", QString());
    if (project.subCategory(subCategory.category, subCategory.name) != nullptr) {
        node.failAt("name", QStringLiteral("\"%1\" is given twice").arg(subCategory.name));
    }
    // Files and groups may name it by either, and must not mean two.
    if (!subCategory.alias.isEmpty() &&
        project.subCategory(subCategory.category, subCategory.alias) != nullptr) {
        node.failAt("alias", QStringLiteral("\"%1\" is given twice").arg(subCategory.alias));
    }
    return subCategory;
}

RKMonitoring monitoringOf(const Node& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("name"), QStringLiteral("category"), QStringLiteral("alarmTo")});
    RKMonitoring monitoring;
    monitoring.name = node.text("name");
    monitoring.category = requireKnown(node, "category", project.categories);
    monitoring.alarmTo = node.texts("alarmTo");
    if (project.monitoring(monitoring.name) != nullptr) {
        node.failAt("name", QStringLiteral("\"%1\" is given twice").arg(monitoring.name));
    }
    return monitoring;
}

// Checks that `node` names a monitoring and a sub-category of its category.
void requireTarget(const Node& node, const ProjectFile& project)
{
    const QString name = node.text("monitoring");
    const RKMonitoring* monitoring = project.monitoring(name);
    if (monitoring == nullptr) {
        node.failAt("monitoring", QStringLiteral("\"%1\" is not among the monitorings").arg(name));
    }
    const QString subCategory = node.text("subCategory");
    if (project.subCategory(monitoring->category, subCategory) == nullptr) {
        node.failAt("subCategory", QStringLiteral("\"%1\" is not among the sub-categories of \"%2\"")
                                       .arg(subCategory, monitoring->category));
    }
}

PlannedGroup groupOf(const Node& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("monitoring"), QStringLiteral("subCategory"), QStringLiteral("name"),
                    QStringLiteral("points"), QStringLiteral("dailyIn"), QStringLiteral("dailyLimit"),
                    QStringLiteral("totalLimit")});
    requireTarget(node, project);
    PlannedGroup group;
    group.monitoring = node.text("monitoring");
    group.subCategory = node.text("subCategory");
    group.setting.groupName = node.text("name");
    group.setting.groupPoint = node.texts("points");
    group.setting.dayVarValue = node.limit("dailyLimit");
    group.setting.totalVar = node.limit("totalLimit");
    const QString unit = QStringLiteral("unit");
    const QString percent = QStringLiteral("percent");
    const bool isPercent = node.has("dailyIn") && requireKnown(node, "dailyIn", {unit, percent}) == percent;
    group.setting.dayVarType = isPercent ? daily::inPercent : daily::inUnits;
    if (group.setting.groupPoint.isEmpty()) {
        node.failAt("points", QStringLiteral("must name at least one point"));
    }
    return group;
}

PlannedFile fileOf(const Node& node, const ProjectFile& project, const QDir& folder)
{
    node.allowOnly({QStringLiteral("file"), QStringLiteral("monitoring"), QStringLiteral("subCategory")});
    requireTarget(node, project);
    PlannedFile file;
    file.path = QDir::cleanPath(folder.filePath(node.text("file")));
    file.monitoring = node.text("monitoring");
    file.subCategory = node.text("subCategory");
    return file;
}

QJsonDocument documentOf(const QString& path, const QByteArray& content)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line = content.left(error.offset).count('\n') + 1;
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1:%2: not JSON: %3").arg(path).arg(line).arg(error.errorString()));
    }
    return document;
}

} // namespace

const RKMonitoring* ProjectFile::monitoring(const QString& name) const
{
    const auto found = std::find_if(monitorings.cbegin(), monitorings.cend(),
                                    [&](const RKMonitoring& known) { return known.name == name; });
    return found == monitorings.cend() ? nullptr : &*found;
}

const RKMonitoringSubCategory* ProjectFile::subCategory(const QString& category, const QString& text) const
{
    const auto found =
        std::find_if(subCategories.cbegin(), subCategories.cend(), [&](const RKMonitoringSubCategory& known) {
            return known.category == category && (known.name == text || known.alias == text);
        });
    return found == subCategories.cend() ? nullptr : &*found;
}

ProjectFile readProjectFile(const QString& path, const QByteArray& content)
{
    const QJsonDocument document = documentOf(path, content);
    const Node root(path, QString(), document.isObject() ? QJsonValue(document.object()) : QJsonValue());
    root.allowOnly({QStringLiteral("categories"), QStringLiteral("subCategories"),
                    QStringLiteral("monitorings"), QStringLiteral("groups"), QStringLiteral("files")});
    ProjectFile project;
    project.categories = root.texts("categories");
    for (const Node& node : root.nodes("subCategories")) {
        project.subCategories.append(subCategoryOf(node, project));
    }
    for (const Node& node : root.nodes("monitorings")) {
        project.monitorings.append(monitoringOf(node, project));
    }
    for (const Node& node : root.nodes("groups")) {
        project.groups.append(groupOf(node, project));
    }
    const QDir folder = QFileInfo(path).dir();
    for (const Node& node : root.nodes("files")) {
        project.files.append(fileOf(node, project, folder));
    }
    return project;
}

ProjectFile readProjectFile(const QString& path)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("cannot open \"%1\": %2").arg(path, source.errorString()));
    }
    return readProjectFile(path, source.readAll());
}
