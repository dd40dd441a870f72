#pragma once

#include "Program.h"
#include "ServiceTest.h"

/// Tests of rkmon against the real service, with an editor's token.
class RkmonTest : public ServiceTest
{
protected:
    RkmonTest() { actAs(editor); }

    void actAs(const MonitorService::Token& token)
    {
        rkmon.configure(service().baseAddress(), project, token.text);
    }

    /// Creates a monitoring and returns its identifier.
    QString created(const QString& name, const QString& category = QStringLiteral("Slope"),
                    const QStringList& more = {}) const
    {
        const Result result =
            rkmon.run(QStringList{QStringLiteral("monitoring"), QStringLiteral("create"),
                                  QStringLiteral("--name"), name, QStringLiteral("--category"), category} +
                      more);
        EXPECT_EQ(result.code, 0) << qPrintable(result.messages);
        return result.output.trimmed();
    }

    Program rkmon;
};
