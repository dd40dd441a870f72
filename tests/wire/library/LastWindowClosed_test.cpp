// An application with windows, whose last one is closed while an operation waits: it ends, as with quit().

#include "../../support/LibraryTest.h"
#include "../../support/Operations.h"

#include <QGuiApplication>
#include <QTimer>
#include <QWindow>

namespace {

class LastWindowClosed : public LibraryTest, public testing::WithParamInterface<Operation>
{
};

TEST_P(LastWindowClosed, DuringTheWaitIsAFailure)
{
    QWindow window;
    window.show();
    server.neverAnswer();
    server.onRequest = [&window] {
        window.close();
    };
    bool failed = false;
    QTimer::singleShot(0, [&] { failed = GetParam().fails(data); });
    QGuiApplication::exec();
    EXPECT_TRUE(failed);
    EXPECT_FALSE(window.isVisible());

    // What an application still does while it closes works.
    server.onRequest = nullptr;
    server.answerJson(200, GetParam().answer);
    EXPECT_TRUE(GetParam().succeeds(data));
}

TEST_P(LastWindowClosed, OneOfTwoWindowsIsNotTheLast)
{
    QWindow window;
    window.show();
    QWindow other;
    other.show();
    server.answerJson(200, GetParam().answer);
    server.onRequest = [&other] {
        other.close();
    };
    bool succeeded = false;
    QTimer::singleShot(0, [&] {
        succeeded = GetParam().succeeds(data);
        QGuiApplication::quit();
    });
    QGuiApplication::exec();
    EXPECT_TRUE(succeeded);
    EXPECT_TRUE(window.isVisible());
}

INSTANTIATE_TEST_SUITE_P(Operations, LastWindowClosed, testing::ValuesIn(allOperations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
