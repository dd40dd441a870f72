#include "import/ProjectFile.h"

#include "DailyLimit.h"
#include "FileContent.h"
#include "JsonNode.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

RKMonitoringSubCategory subCategoryOf(const JsonNode& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("category"), QStringLiteral("name"), QStringLiteral("alias")});
    RKMonitoringSubCategory subCategory;
    subCategory.category = node.oneOf("category", project.categories);
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

RKMonitoring monitoringOf(const JsonNode& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("name"), QStringLiteral("category"), QStringLiteral("alarmTo")});
    RKMonitoring monitoring;
    monitoring.name = node.text("name");
    monitoring.category = node.oneOf("category", project.categories);
    monitoring.alarmTo = node.texts("alarmTo");
    if (project.monitoring(monitoring.name) != nullptr) {
        node.failAt("name", QStringLiteral("\"%1\" is given twice").arg(monitoring.name));
    }
    return monitoring;
}

void requireSubCategory(const JsonNode& node, const ProjectFile& project, const RKMonitoring& monitoring)
{
    const QString subCategory = node.text("subCategory");
    if (project.subCategory(monitoring.category, subCategory) == nullptr) {
        node.failAt("subCategory", QStringLiteral("\"%1\" is not among the sub-categories of \"%2\"")
                                       .arg(subCategory, monitoring.category));
    }
}

const RKMonitoring& requiredMonitoring(const JsonNode& node, const ProjectFile& project)
{
    const QString name = node.text("monitoring");
    const RKMonitoring* monitoring = project.monitoring(name);
    if (monitoring == nullptr) {
        node.failAt("monitoring", QStringLiteral("\"%1\" is not among the monitorings").arg(name));
    }
    return *monitoring;
}

PlannedGroup groupOf(const JsonNode& node, const ProjectFile& project)
{
    node.allowOnly({QStringLiteral("monitoring"), QStringLiteral("subCategory"), QStringLiteral("name"),
                    QStringLiteral("points"), QStringLiteral("dailyIn"), QStringLiteral("dailyLimit"),
                    QStringLiteral("totalLimit")});
    requireSubCategory(node, project, requiredMonitoring(node, project));
    PlannedGroup group;
    group.monitoring = node.text("monitoring");
    group.subCategory = node.text("subCategory");
    group.setting.groupName = node.text("name");
    group.setting.groupPoint = node.texts("points");
    group.setting.dayVarValue = node.limit("dailyLimit");
    group.setting.totalVar = node.limit("totalLimit");
    const QString unit = QStringLiteral("unit");
    const QString percent = QStringLiteral("percent");
    const bool isPercent = node.has("dailyIn") && node.oneOf("dailyIn", {unit, percent}) == percent;
    group.setting.dayVarType = isPercent ? daily::inPercent : daily::inUnits;
    if (group.setting.groupPoint.isEmpty()) {
        node.failAt("points", QStringLiteral("must name at least one point"));
    }
    return group;
}

PlannedFile fileOf(const JsonNode& node, const ProjectFile& project, const QDir& folder)
{
    node.allowOnly({QStringLiteral("file"), QStringLiteral("monitoring"), QStringLiteral("subCategory"),
                    QStringLiteral("map")});
    const RKMonitoring& monitoring = requiredMonitoring(node, project);
    PlannedFile file;
    file.path = QDir::cleanPath(folder.filePath(node.text("file")));
    file.monitoring = monitoring.name;
    if (node.has("subCategory")) {
        requireSubCategory(node, project, monitoring);
        file.subCategory = node.text("subCategory");
    }
    if (node.value("map").isObject()) {
        file.mapping = readFileMapping(node.node("map"));
    } else if (node.has("map")) {
        file.mappingFile = QDir::cleanPath(folder.filePath(node.text("map")));
    }
    return file;
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
    const JsonNode root = JsonNode::rootOf(path, content);
    root.allowOnly({QStringLiteral("categories"), QStringLiteral("subCategories"),
                    QStringLiteral("monitorings"), QStringLiteral("groups"), QStringLiteral("files")});
    ProjectFile project;
    project.categories = root.texts("categories");
    for (const JsonNode& node : root.nodes("subCategories")) {
        project.subCategories.append(subCategoryOf(node, project));
    }
    for (const JsonNode& node : root.nodes("monitorings")) {
        project.monitorings.append(monitoringOf(node, project));
    }
    for (const JsonNode& node : root.nodes("groups")) {
        project.groups.append(groupOf(node, project));
    }
    const QDir folder = QFileInfo(path).dir();
    for (const JsonNode& node : root.nodes("files")) {
        project.files.append(fileOf(node, project, folder));
    }
    return project;
}

ProjectFile readProjectFile(const QString& path)
{
    return readProjectFile(path, contentOfFile(path));
}
