#include "RkmonTest.h"
#include "Text.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <gmock/gmock.h>

// AGS files of a site go in, and come out again.

namespace {

using testing::HasSubstr;

const QString site = QStringLiteral(RK_AGS_FILES "/site.ags");

class RkmonAgs : public RkmonTest
{
protected:
    RkmonAgs()
    {
        createSubCategories(project);
        created("Canal"_q);
    }

    void createSubCategories(const QString& where) const
    {
        subCategory(where, "Water depth"_q, "WDEP"_q, "m"_q);
        subCategory(where, "Temperature"_q, "TE"_q, "\u00b0C"_q);
        subCategory(where, "Tilt"_q, "TI"_q, "mm"_q);
    }

    void subCategory(const QString& where, const QString& name, const QString& alias,
                     const QString& unit) const
    {
        service().admin({"subcategory"_q, "create"_q, "--project"_q, where, "--category"_q, "Slope"_q,
                         "--name"_q, name, "--alias"_q, alias, "--unit"_q, unit});
    }

    QString write(const char* name, const QByteArray& content) const
    {
        QFile file(QDir(rkmon.folder()).filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    QByteArray siteText() const
    {
        QFile file(site);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    // What its types measure, and the unit of one under another name.
    QString mapping() const
    {
        return write("site.json", R"({"timeZone": "Europe/London",
            "types": {"TEMP": {"subCategory": "Temperature", "unit": "DegC"}, "DISP": "TI"}})");
    }

    Result import(const QStringList& more) const
    {
        return rkmon.run(QStringList{"point"_q, "import"_q, "--cell"_q, "Canal"_q, "--json"_q} + more);
    }

    Result done(const QStringList& arguments) const
    {
        const Result result = rkmon.run(arguments);
        EXPECT_EQ(result.code, 0) << arguments.join(QLatin1Char(' ')).toStdString() << ": "
                                  << result.messages.toStdString();
        return result;
    }

    QString samples() const
    {
        return done({"point"_q, "list"_q, "--cell"_q, "Canal"_q, "--samples"_q, "--csv"_q}).output;
    }
};

} // namespace

TEST_F(RkmonAgs, ReadsWhatASiteDelivers)
{
    const QString map = mapping();
    for (int repetition = 0; repetition < 2; ++repetition) {
        const Result result = import({"--map"_q, map, site});
        ASSERT_EQ(result.code, 0) << result.messages.toStdString();
        EXPECT_EQ(result.messages, "rkmon: %1: cells without a reading left out: 1\n"_q.arg(site));
        EXPECT_EQ(result.object().value("samples"_q).toInt(), 6);
        EXPECT_EQ(result.object().value("deliveries"_q).toInt(), 3) << "one for each sub-category";
    }
    QStringList rows = samples().split("\r\n"_q, Qt::SkipEmptyParts);
    rows.removeFirst();
    rows.sort();
    EXPECT_EQ(rows.join(u'\n'), "Temperature,BH101,10.5,2024-03-28T09:15:00.000Z,1,11.6,,11.6\n"
                                "Tilt,IN1,0.5,2024-03-28T11:00:00.000Z,1,1.25,,1.25\n"
                                "Tilt,IN1,1,2024-03-28T11:00:00.000Z,1,-0.75,,-0.75\n"
                                "Water depth,BH101,10.5,2024-03-28T09:15:00.000Z,1,3.42,,3.42\n"
                                "Water depth,BH101,10.5,2024-04-01T09:10:00.000+01:00,1,3.405,,3.42\n"
                                "Water depth,BH102,8,2024-04-01T09:40:00.000+01:00,1,7.95,,7.95"_q);
}

TEST_F(RkmonAgs, TypesAndUnitsThatAreNotKnownAreTold)
{
    const Result unknown = import({"--time-zone"_q, "Europe/London"_q, site});
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(unknown.messages,
              "rkmon: %1: cells without a reading left out: 1\n"
              "%1:75: there is no sub-category \"TEMP\"; a mapping can say which one the type is\n"
              "%1:79: there is no sub-category \"DISP\"; a mapping can say which one the type is\n"
              "rkmon: nothing was sent: see the bad rows above\n"_q.arg(site));
    const Result units = import(
        {"--time-zone"_q, "Europe/London"_q, "--type"_q, "TEMP=TE"_q, "--type"_q, "DISP=WDEP"_q, site});
    EXPECT_EQ(units.code, 1);
    EXPECT_THAT(
        units.messages.toStdString(),
        HasSubstr("site.ags:75: the unit of \"TE\" is \"DegC\" here, and \"\u00b0C\" otherwise; nothing "
                  "is converted, but a mapping can say that it is the same\n"));
    EXPECT_THAT(units.messages.toStdString(),
                HasSubstr("site.ags:79: the unit of \"WDEP\" is \"mm\" here, and \"m\" otherwise"));
    EXPECT_EQ(done({"data"_q, "list"_q, "--json"_q}).array().size(), 0);
}

TEST_F(RkmonAgs, TimesAreThoseOfTheProject)
{
    const QString map = write("no-zone.json", R"({"ignore": ["TEMP", "DISP"]})");
    const Result result = import({"--map"_q, map, site});
    ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_THAT(result.messages.toStdString(),
                HasSubstr("site.ags: its times name no offset and are read as those of the project, "));
}

TEST_F(RkmonAgs, ALocationWithSeveralInstallationsAsksForNames)
{
    const QString file = write("two.ags", siteText().replace("\"DATA\",\"IN1\",\"IN1\",\"1.00\"",
                                                             "\"DATA\",\"IN1\",\"IN2\",\"1.00\""));
    const QString map = mapping();
    const Result result = import({"--map"_q, map, file});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(
        result.messages,
        "%1:71: the location \"IN1\" has several installations (\"IN1\", \"IN2\"): how are points named?\n"
        "rkmon: nothing was sent: see the bad rows above; --column name=LOCA_ID/MONG_ID says how points "
        "are named: by LOCA_ID/MONG_ID or MONG_ID or LOCA_ID\n"_q.arg(file));
    EXPECT_EQ(import({"--map"_q, map, "--column"_q, "name=LOCA_ID/MONG_ID"_q, file}).code, 0);
    EXPECT_THAT(samples().toStdString(), HasSubstr("Tilt,IN1/IN2,1,"));
}

TEST_F(RkmonAgs, BadRowsAreMendedAndImported)
{
    const QString file = write("bad.ags", siteText().replace("\"3.405\"", "\"3,405\""));
    const QString bad = QDir(rkmon.folder()).filePath("mend.ags"_q);
    const QString map = mapping();
    const Result result = import({"--map"_q, map, "--skip-bad-rows"_q, bad, file});
    ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_EQ(result.object().value("samples"_q).toInt(), 5);
    QFile mended(bad);
    ASSERT_TRUE(mended.open(QIODevice::ReadOnly));
    const QByteArray rows = mended.readAll();
    EXPECT_THAT(rows.toStdString(), HasSubstr("bad.ags:78: value \"\"3,405\"\" is not a number"));
    const Result again =
        import({"--map"_q, map, write("mended.ags", QByteArray(rows).replace("\"3,405\",", "\"3.405\","))});
    EXPECT_EQ(again.code, 0) << again.messages.toStdString();
    EXPECT_EQ(again.object().value("samples"_q).toInt(), 1);
}

TEST_F(RkmonAgs, AnExportGivesTheSameDataAgain)
{
    const QByteArray header = "subCategory,name,depth,time,count,value,timeFlag,initialValue\n";
    done({"point"_q, "import"_q, "--cell"_q, "Canal"_q,
          write("a.csv", header + "TI,IN1,0.5,2024-03-31T00:30:00+05:30,1,0.1,A,0\n"
                                  "TI,IN1,0.5,2024-03-31T01:30:00Z,1,0.30000000000000004,,0\n"
                                  "TI,IN1,0.5,2024-03-31T01:30:00Z,2,-1e-7,,0\n"
                                  "TE,\"a \"\"b\"\", c\",,2024-10-27T00:30:00.250Z,1,12.5,,\n"
                                  "WDEP,\u6d4b\u70b91,12,2024-10-27T01:30:00Z,7,3.5,,2.25\n"
                                  "TE,IN1,0.5,2024-10-27T01:30:00Z,7,3.5,,2.25\n")});
    const QString before = samples();
    const QStringList statistics{"stats"_q,
                                 "normal"_q,
                                 "--cell"_q,
                                 "Canal"_q,
                                 "--csv"_q,
                                 "--columns"_q,
                                 "subCategoryName,name,depth,day,time,count,value,totalVar"_q};
    const QString variations = done(statistics).output;
    const Result exported = done({"point"_q, "list"_q, "--cell"_q, "Canal"_q, "--ags"_q});
    EXPECT_THAT(exported.messages.toStdString(), HasSubstr("texts of the file are not ASCII"));
    const QString file = write("export.ags", exported.output.toUtf8());

    const QString other = service().createProject("Other"_q);
    createSubCategories(other);
    const MonitorService::Token writer = service().createToken("Cleo"_q, other, "editor"_q);
    rkmon.configure(service().baseAddress(), other, writer.text);
    created("Canal"_q);
    const Result result = import({file});
    ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_EQ(result.object().value("samples"_q).toInt(), 6);
    EXPECT_EQ(samples(), before);
    EXPECT_EQ(done(statistics).output, variations);
}

TEST_F(RkmonAgs, AProjectSaysHowEachFileIsWritten)
{
    write("site.ags", siteText());
    write("levels.csv", "P;T;V\nL1;01.04.2024 08:00;1,5\n");
    mapping();
    const QString plan = write("project.json", R"({
        "categories": ["Slope"],
        "subCategories": [{"category": "Slope", "name": "Water depth", "alias": "WDEP"},
                          {"category": "Slope", "name": "Temperature"}, {"category": "Slope", "name": "Tilt",
                           "alias": "TI"}],
        "monitorings": [{"name": "Canal", "category": "Slope"}],
        "files": [{"file": "site.ags", "monitoring": "Canal", "map": "site.json"},
                  {"file": "levels.csv", "monitoring": "Canal", "subCategory": "TI",
                   "map": {"columns": {"name": "P", "time": "T", "value": "V"},
                           "timeFormat": "day-month-year"}}]})");
    const QStringList order{"point"_q, "import"_q, "--project-file"_q, plan, "--json"_q};
    const Result unclear = rkmon.run(order);
    EXPECT_EQ(unclear.code, 1);
    EXPECT_THAT(unclear.messages.toStdString(), HasSubstr("levels.csv:2: ")) << "its times have no zone";
    const Result result = rkmon.run(order + QStringList{"--time-zone"_q, "Europe/London"_q});
    ASSERT_EQ(result.code, 0) << result.messages.toStdString();
    EXPECT_EQ(result.object().value("samples"_q).toInt(), 7);
    EXPECT_EQ(result.object().value("files"_q).toInt(), 2);
    EXPECT_THAT(samples().toStdString(), HasSubstr("Tilt,L1,,2024-04-01T08:00:00.000+01:00,1,1.5,,1.5"));
}

TEST_F(RkmonAgs, AProjectMustSayWhatAFileDoesNot)
{
    write("plain.csv", "name,depth,time,count,value\nL1,,2024-04-01T08:00:00Z,1,1.5\n");
    const QString plan = write("project.json", R"({
        "categories": ["Slope"], "subCategories": [{"category": "Slope", "name": "Tilt"}],
        "monitorings": [{"name": "Canal", "category": "Slope"}],
        "files": [{"file": "plain.csv", "monitoring": "Canal"}]})");
    const Result result = rkmon.run({"point"_q, "import"_q, "--project-file"_q, plan});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.messages.toStdString(),
                HasSubstr("plain.csv does not say what its readings measure, nor does its subCategory in the "
                          "project file"));
}

TEST_F(RkmonAgs, AMappingIsProposedAndTakesTheFile)
{
    const Result proposal = done({"point"_q, "import"_q, "--write-map"_q, site});
    EXPECT_THAT(proposal.messages.toStdString(), HasSubstr("recognised: an AGS 4 file"));
    EXPECT_THAT(proposal.messages.toStdString(), HasSubstr("left open: types.DISP: its sub-category"));
    const QString map = write("proposed.json", proposal.output.toUtf8());
    const QStringList types{"--type"_q, "DISP=TI"_q, "--time-zone"_q, "Europe/London"_q};
    const Result result = import(QStringList{"--map"_q, map, site} + types);
    EXPECT_EQ(result.code, 1) << "what is open is asked for";
    EXPECT_THAT(result.messages.toStdString(), HasSubstr("there is no sub-category \"TEMP\""));
}
