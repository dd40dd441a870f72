// Prints identifier and name of every monitoring of a project:
//   example http://127.0.0.1:8600/ PROJECT TOKEN

#include <NetworkManager.h>
#include <QCoreApplication>
#include <QTextStream>
#include <RKBaseApi.h>
#include <RKMonitoringData.h>
#include <RKSoftCache.h>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    RKBaseApi::GetInstance().setBaseApi(application.arguments().value(1));
    GetSoftCache()->setProjectId(application.arguments().value(2));
    NetworkManager::instance().setBearerToken(application.arguments().value(3));

    QList<QPair<QString, QString>> cells;
    if (!RKMonitoringData::instance()->getCellIdAndName(cells)) {
        return 1;
    }
    for (const auto& cell : cells) {
        QTextStream(stdout) << cell.first << "  " << cell.second << '\n';
    }
    return 0;
}
