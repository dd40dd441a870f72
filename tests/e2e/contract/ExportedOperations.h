#pragma once

#include <string>
#include <vector>

/// The operations that the library exports, each as in "deleteGroup(QString const&)": the list that its
/// install test holds, without what makes, copies, empties and destroys the object.
std::vector<std::string> exportedOperations();
