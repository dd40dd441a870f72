// Runs the contract against a service of its own or against the one that the environment names
// (Deployment.h).

#include "Contract.h"
#include "ExportedOperations.h"

#include <QCoreApplication>

#include <iostream>

namespace {

// Fails a whole run that has left an operation out.
class EveryOperation : public testing::Environment
{
public:
    void TearDown() override
    {
        const testing::UnitTest& run = *testing::UnitTest::GetInstance();
        if (run.test_to_run_count() < run.total_test_count()) {
            return; // chosen tests only
        }
        const std::vector<std::string> operations = exportedOperations();
        EXPECT_EQ(operations.size(), 40U);
        EXPECT_THAT(CoveredMonitoringData::missing(operations), testing::IsEmpty())
            << "no test has seen these operations succeed";
    }
};

// Runs the tests and removes what a test that did not come to its end may have left.
int runTests(const Deployment& deployment)
{
    std::cout << "contract: " << deployment.baseAddress.toStdString() << ", project "
              << deployment.project.toStdString() << ", names beginning with " << deployment.run.toStdString()
              << std::endl;
    int code = RUN_ALL_TESTS();
    const QStringList left = removeWhatWasCreated(deployment);
    for (const QString& line : left) {
        std::cerr << "contract: " << line.toStdString() << '\n';
        code = 1;
    }
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    testing::AddGlobalTestEnvironment(new EveryOperation); // GoogleTest owns it
    try {
        const Deployment deployment;
        return runTests(deployment);
    } catch (const Deployment::Unusable& reason) {
        std::cerr << "contract: " << reason.what() << '\n';
        return reason.exitCode;
    }
}
