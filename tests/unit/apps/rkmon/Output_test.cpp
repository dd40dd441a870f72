#include "Output.h"

#include "Text.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const QVariant& cell)
{
    return cell.canConvert<ShownCell>() ? cell.value<ShownCell>().text.toStdString()
                                        : cell.toString().toStdString();
}

// What a sheet with this cell alone is for programs and for people.
std::string written(OutputForm form, const QVariant& cell)
{
    Output output(form);
    output.addList({{column::fixed("VALUE", "value")}, {{cell}}});
    testing::internal::CaptureStdout();
    output.flush();
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(Output, NumbersHaveTheirDecimalsForPeople)
{
    EXPECT_EQ(shown(cell::number(1.005, 1)), "1.0");
    EXPECT_EQ(shown(cell::number(2.0, 3)), "2.000");
    EXPECT_EQ(shown(cell::number(-0.001, 2)), "0.00");
    EXPECT_EQ(shown(cell::number(-0.006, 2)), "-0.01");
    EXPECT_EQ(shown(cell::number(1e20, 0)), "100000000000000000000");
    EXPECT_EQ(shown(cell::number(0.25, std::nullopt)), "0.25");
}

TEST(Output, ProgramsGetTheNumberAsItIs)
{
    const QVariant cell = cell::number(0.123456789, 2);
    EXPECT_EQ(written(OutputForm::Table, cell), "VALUE\n0.12\n");
    EXPECT_EQ(written(OutputForm::Csv, cell), "value\r\n0.123456789\r\n");
    EXPECT_EQ(written(OutputForm::Json, cell), "[\n    {\n        \"value\": 0.123456789\n    }\n]\n");
}

TEST(Output, NestedValuesAreJsonInCsv)
{
    EXPECT_EQ(written(OutputForm::Csv, QVariantMap{{"a"_q, 1}}), "value\r\n\"{\"\"a\"\":1}\"\r\n");
}
