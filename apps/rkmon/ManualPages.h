#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace CLI {
class App;
}

/// The manual of the program, made of what --help and "rkmon help" show: pages for man by the names of their
/// files, "rkmon.1" and one for each command, "rkmon-monitoring.1".
QMap<QString, QByteArray> manualPages(const CLI::App& root, const QString& version);
