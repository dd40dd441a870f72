#include "extensions/Projects.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

ServiceProject projectOf(const AnswerObject& object)
{
    ServiceProject project;
    project.id = object.identifier("_id");
    project.name = object.text("name");
    project.timeZone = object.text("timeZone");
    return project;
}

MeasuredSubCategory subCategoryOf(const AnswerObject& object)
{
    MeasuredSubCategory subCategory;
    subCategory.id = object.identifier("_id");
    subCategory.name = object.text("name");
    subCategory.category = object.text("category");
    subCategory.alias = object.text("alias");
    subCategory.kind = object.text("kind");
    subCategory.unit = object.text("unit");
    subCategory.decimals = object.smallIntegerOrNull("decimals");
    return subCategory;
}

} // namespace

QList<ServiceProject> readProjects(const RequestContext& context)
{
    return readAll(context, {QStringLiteral("projects"), {}, {}, {}}, QStringLiteral("projects"), projectOf);
}

ServiceProject readProject(const RequestContext& context, const QString& id)
{
    return projectOf(get(context, resourcePath("projects/%1", id)));
}

QList<MeasuredSubCategory> readSubCategories(const RequestContext& context, const QString& project)
{
    return readAll(context, {resourcePath("projects/%1/subCategories", project), {}, {}, {}},
                   QStringLiteral("sub-categories"), subCategoryOf);
}

} // namespace extensions
