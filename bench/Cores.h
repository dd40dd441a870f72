#pragma once

#include <vector>

/// The processor cores that this process may use, by number; empty where the system does not say (all but
/// Linux).
std::vector<int> usableCores();

/// Keeps the calling thread on these cores, and the threads that it starts from now on. None: changes
/// nothing.
void stayOn(const std::vector<int>& cores);
