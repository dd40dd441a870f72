#pragma once

#include "Session.h"

namespace CLI {
class App;
}

// Each adds its commands to the command line; the one that the user names is put into `chosen`.

void addMonitoringCommands(CLI::App& root, Command& chosen);
void addCategoryCommands(CLI::App& root, Command& chosen);
void addSubCategoryCommands(CLI::App& root, Command& chosen);
void addPermissionCommands(CLI::App& root, Command& chosen);
void addProjectCommands(CLI::App& root, Command& chosen);
/// whoami, ping
void addServiceCommands(CLI::App& root, Command& chosen);
void addPointCommands(CLI::App& root, Command& chosen);
void addStatisticsCommands(CLI::App& root, Command& chosen);
void addGroupCommands(CLI::App& root, Command& chosen);
void addDataCommands(CLI::App& root, Command& chosen);
void addAlarmCommands(CLI::App& root, Command& chosen);
void addSampleCommands(CLI::App& root, Command& chosen);
void addChangeCommands(CLI::App& root, Command& chosen);
