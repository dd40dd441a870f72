#include "Cores.h"

#ifdef __linux__
#include <sched.h>

#include <stdexcept>
#endif

std::vector<int> usableCores()
{
    std::vector<int> cores;
#ifdef __linux__
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) != 0) {
        return cores;
    }
    for (int core = 0; core < CPU_SETSIZE; ++core) {
        if (CPU_ISSET(core, &set)) {
            cores.push_back(core);
        }
    }
#endif
    return cores;
}

void stayOn(const std::vector<int>& cores)
{
    if (cores.empty()) {
        return;
    }
#ifdef __linux__
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const int core : cores) {
        CPU_SET(core, &set);
    }
    if (sched_setaffinity(0, sizeof set, &set) != 0) {
        throw std::runtime_error("the system does not let a thread stay on a core");
    }
#endif
}
