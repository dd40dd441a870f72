#include "import/ProjectFile.h"

#include "Failure.h"
#include "Text.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

const QByteArray base =
    R"("categories": ["Slope"], "subCategories": [{"category": "Slope", "name": "Soil moisture", "alias": "SM"}],
       "monitorings": [{"name": "VH", "category": "Slope", "alarmTo": ["ana"]}])";

std::string refusalOf(const QByteArray& content)
{
    try {
        readProjectFile("in/project.json"_q, content);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        return failure.message().toStdString();
    }
    return "none";
}

} // namespace

TEST(ProjectFile, ReadsWhatASiteConsistsOf)
{
    const ProjectFile project = readProjectFile("in/project.json"_q, "{" + base + R"(,
        "groups": [{"monitoring": "VH", "subCategory": "SM", "name": "Probes", "points": ["W1", "W2"],
                    "dailyIn": "percent", "dailyLimit": 4, "totalLimit": 0.05}],
        "files": [{"file": "w1.csv", "monitoring": "VH", "subCategory": "Soil moisture"}]})");
    EXPECT_EQ(project.categories, QStringList{"Slope"_q});
    ASSERT_EQ(project.subCategories.size(), 1);
    EXPECT_EQ(project.subCategories[0].alias, "SM"_q);
    ASSERT_EQ(project.monitorings.size(), 1);
    EXPECT_EQ(project.monitorings[0].alarmTo, QStringList{"ana"_q});
    ASSERT_EQ(project.groups.size(), 1);
    EXPECT_EQ(project.groups[0].setting.groupPoint, (QStringList{"W1"_q, "W2"_q}));
    EXPECT_EQ(project.groups[0].setting.dayVarType, 1);
    EXPECT_EQ(project.groups[0].setting.dayVarValue, 4.0);
    EXPECT_EQ(project.groups[0].setting.totalVar, 0.05);
    ASSERT_EQ(project.files.size(), 1);
    EXPECT_EQ(project.files[0].path, "in/w1.csv"_q);
}

TEST(ProjectFile, AFileMayHaveItsOwnMappingAndSayWhatItMeasures)
{
    const ProjectFile project = readProjectFile("in/project.json"_q, "{" + base + R"(,
        "files": [{"file": "site.ags", "monitoring": "VH", "map": "maps/site.json"},
                  {"file": "b.csv", "monitoring": "VH", "subCategory": "SM",
                   "map": {"layout": "column-per-depth"}}]})");
    ASSERT_EQ(project.files.size(), 2);
    EXPECT_EQ(project.files[0].subCategory, QString());
    EXPECT_EQ(project.files[0].mappingFile, "in/maps/site.json"_q);
    EXPECT_FALSE(project.files[0].mapping);
    ASSERT_TRUE(project.files[1].mapping);
    EXPECT_EQ(project.files[1].mapping->layout, TableLayout::ColumnPerDepth);
    EXPECT_EQ(project.files[1].mappingFile, QString());
}

TEST(ProjectFile, NamesWhatIsWrong)
{
    const std::vector<std::pair<QByteArray, const char*>> cases{
        {"[]", "in/project.json: it must be an object"},
        {"{\n\"a\": \n}", "in/project.json:3: not JSON: object is missing after a comma"},
        {R"({"stations": []})",
         "in/project.json: it has an unknown member \"stations\"; known are categories, "
         "subCategories, monitorings, groups, files"},
        {R"({"categories": "Slope"})", "in/project.json: categories must be a list"},
        {R"({"categories": [1]})", "in/project.json: categories must be a list of texts that are not empty"},
        {R"({"monitorings": [{"name": "VH", "category": "Slope"}]})",
         "in/project.json: monitorings[0].category \"Slope\" must be one of the list, which is empty"},
        {"{" + base + R"(, "files": [{"file": "a.csv", "monitoring": "LS", "subCategory": "SM"}]})",
         "in/project.json: files[0].monitoring \"LS\" is not among the monitorings"},
        {"{" + base + R"(, "files": [{"file": "a.csv", "monitoring": "VH", "subCategory": "RF"}]})",
         "in/project.json: files[0].subCategory \"RF\" is not among the sub-categories of \"Slope\""},
        {"{" + base + R"(, "files": [{"monitoring": "VH", "subCategory": "SM"}]})",
         "in/project.json: files[0].file must be a text that is not empty"},
        {"{" + base + R"(, "files": [{"file": "a", "monitoring": "VH", "subCategory": "SM", "day": 1}]})",
         "in/project.json: files[0] has an unknown member \"day\"; known are file, monitoring, "
         "subCategory, map"},
        {"{" + base + R"(, "files": [{"file": "a", "monitoring": "VH", "map": {"layout": "wide"}}]})",
         "in/project.json: files[0].map.layout \"wide\" must be one of rows, column-per-point, "
         "column-per-depth, "
         "column-per-date"},
        {"{" + base + R"(, "files": [{"file": "a", "monitoring": "VH", "map": 3}]})",
         "in/project.json: files[0].map must be a text that is not empty"},
        {"{" + base +
             R"(, "groups": [{"monitoring": "VH", "subCategory": "SM", "name": "P", "points": []}]})",
         "in/project.json: groups[0].points must name at least one point"},
        {"{" + base + R"(, "groups": [{"monitoring": "VH", "subCategory": "SM", "name": "P", "points": ["W1"],
            "totalLimit": -1}]})",
         "in/project.json: groups[0].totalLimit must be a number that is not negative"},
        {"{" + base + R"(, "groups": [{"monitoring": "VH", "subCategory": "SM", "name": "P", "points": ["W1"],
            "dailyIn": "mm"}]})",
         "in/project.json: groups[0].dailyIn \"mm\" must be one of unit, percent"},
        {R"({"categories": ["Slope"], "monitorings": [{"name": "VH", "category": "Slope"},
            {"name": "VH", "category": "Slope"}]})",
         "in/project.json: monitorings[1].name \"VH\" is given twice"},
        {R"({"categories": ["Slope"], "subCategories": [{"category": "Slope", "name": "Rain", "alias": "R"},
            {"category": "Slope", "name": "Radon", "alias": "R"}]})",
         "in/project.json: subCategories[1].alias \"R\" is given twice"},
        {R"({"categories": ["Slope"], "subCategories": [{"category": "Slope", "name": "Rain"},
            {"category": "Slope", "name": "Rainfall", "alias": "Rain"}]})",
         "in/project.json: subCategories[1].alias \"Rain\" is given twice"},
    };
    for (const auto& [content, refusal] : cases) {
        EXPECT_EQ(refusalOf(content), refusal) << content.toStdString();
    }
}

TEST(ProjectFile, MissingFileIsTold)
{
    try {
        readProjectFile("no/such/project.json"_q);
        FAIL() << "read a file that is not there";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadInput);
        EXPECT_TRUE(failure.message().startsWith("cannot open \"no/such/project.json\": "_q));
    }
}

TEST(ProjectFile, SampleNamesEveryFileOfTheFolder)
{
    const QString folder = QStringLiteral(RK_SAMPLES) + "/coastal-bluff/"_q;
    const ProjectFile project = readProjectFile(folder + "project.json"_q);
    EXPECT_EQ(project.files.size(), 22);
    for (const PlannedFile& file : project.files) {
        EXPECT_TRUE(QFile::exists(file.path)) << file.path.toStdString();
    }
    EXPECT_EQ(project.monitorings.size(), 5);
}
