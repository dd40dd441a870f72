#include "RkmonTest.h"
#include "Text.h"

#include <gmock/gmock.h>

// Names where rkmon takes identifiers.

namespace {

class RkmonNames : public RkmonTest
{
protected:
    QString createSubCategory(const QString& category, const QString& name, const QString& alias) const
    {
        return service().admin({"subcategory"_q, "create"_q, "--project"_q, project, "--category"_q, category,
                                "--name"_q, name, "--alias"_q, alias});
    }

    Result createGroup(const QString& cell, const QString& name) const
    {
        return rkmon.run({"group"_q, "create"_q, "--cell"_q, cell, "--sub-category"_q, "SM"_q, "--name"_q,
                          name, "--point"_q, "W1"_q, "--total-limit"_q, "1"_q});
    }

    void expectAmbiguous(const QStringList& command, const QStringList& candidates) const
    {
        const Result result = rkmon.run(command);
        EXPECT_EQ(result.code, 2) << result.messages.toStdString();
        EXPECT_EQ(result.output, QString());
        for (const QString& candidate : candidates) {
            EXPECT_TRUE(result.messages.contains(candidate)) << result.messages.toStdString();
        }
    }
};

} // namespace

TEST_F(RkmonNames, OfMonitorings)
{
    const QString id = created("VH upper"_q);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "show"_q, "VH upper"_q, "--json"_q}).object().value("id"_q), id);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "name"_q, "VH upper"_q, id, "--csv"_q}).output,
              "id,name\r\n%1,VH upper\r\n%1,VH upper\r\n"_q.arg(id));
    EXPECT_EQ(rkmon.run({"monitoring"_q, "update"_q, "VH upper"_q, "--name"_q, "VH"_q}).code, 0);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "show"_q, "VH upper"_q}).code, 4);

    const QString other = created("VH"_q, "Pit"_q);
    expectAmbiguous({"monitoring"_q, "show"_q, "VH"_q}, {id + " (Slope)"_q, other + " (Pit)"_q});
    expectAmbiguous({"monitoring"_q, "delete"_q, "--yes"_q, "VH"_q}, {id, other});
    EXPECT_EQ(rkmon.run({"monitoring"_q, "delete"_q, "--yes"_q, other}).code, 0);
    EXPECT_EQ(rkmon.run({"monitoring"_q, "delete"_q, "--yes"_q, "VH"_q}).messages,
              "rkmon: deleted monitoring %1\n"_q.arg(id));
    EXPECT_EQ(rkmon.run({"monitoring"_q, "count"_q}).output, "0\n"_q);
}

TEST_F(RkmonNames, OfSubCategories)
{
    const QString moisture = createSubCategory("Slope"_q, "Soil moisture"_q, "SM"_q);
    for (const QString& text : {moisture, "Soil moisture"_q, "SM"_q}) {
        const Result shown = rkmon.run({"subcategory"_q, "show"_q, text, "--json"_q});
        EXPECT_EQ(shown.object().value("id"_q), moisture) << shown.messages.toStdString();
    }
    const QString ofPit = createSubCategory("Pit"_q, "Soil moisture"_q, "PM"_q);
    expectAmbiguous({"subcategory"_q, "show"_q, "Soil moisture"_q},
                    {moisture + " (Soil moisture, Slope)"_q, ofPit + " (Soil moisture, Pit)"_q});
    EXPECT_EQ(rkmon.run({"subcategory"_q, "show"_q, "none"_q}).code, 4);
}

TEST_F(RkmonNames, OfGroups)
{
    createSubCategory("Slope"_q, "Soil moisture"_q, "SM"_q);
    created("VH"_q);
    created("LS"_q);
    const QString id = createGroup("VH"_q, "Probes"_q).output.trimmed();
    const Result updated =
        rkmon.run({"group"_q, "update"_q, "Probes"_q, "--total-limit"_q, "2"_q, "--json"_q});
    EXPECT_EQ(updated.object().value("id"_q), id) << updated.messages.toStdString();
    EXPECT_EQ(updated.object().value("totalLimit"_q), 2);

    const QString other = createGroup("LS"_q, "Probes"_q).output.trimmed();
    expectAmbiguous({"group"_q, "delete"_q, "--yes"_q, "Probes"_q},
                    {id + " (VH, Soil moisture)"_q, other + " (LS, Soil moisture)"_q});
    EXPECT_EQ(rkmon.run({"group"_q, "delete"_q, "--yes"_q, "Probes"_q, "--cell"_q, "LS"_q}).messages,
              "rkmon: deleted group %1\n"_q.arg(other));
    EXPECT_EQ(rkmon.run({"group"_q, "delete"_q, "--yes"_q, "Probes"_q}).code, 0);
    EXPECT_EQ(rkmon.run({"group"_q, "delete"_q, "--yes"_q, "Probes"_q}).code, 4);
}

TEST_F(RkmonNames, AreCompleted)
{
    createSubCategory("Slope"_q, "Soil moisture"_q, "SM"_q);
    created("VH"_q);
    createGroup("VH"_q, "Upper probes"_q);
    const auto completed = [&](const QStringList& words) {
        return rkmon.run(QStringList{"__complete"_q} + words).output;
    };
    EXPECT_EQ(completed({"monitoring"_q, "show"_q, QString()}), "VH\n"_q);
    EXPECT_EQ(completed({"subcategory"_q, "show"_q, "S"_q}), "Soil moisture\nSM\n"_q);
    EXPECT_EQ(completed({"group"_q, "delete"_q, QString()}), "Upper probes\n"_q);
    EXPECT_EQ(completed({"monitoring"_q, "show"_q, "--project"_q, "000000000000000000000000"_q, QString()}),
              QString());
}
