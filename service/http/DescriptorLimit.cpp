#include "http/DescriptorLimit.h"

#include <algorithm>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace monitorservice {

std::size_t allowDescriptors(std::size_t wanted)
{
#ifdef _WIN32
    // Sockets are handles there, without a number to raise.
    return wanted;
#else
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return wanted;
    }
    if (limit.rlim_cur < wanted) {
        rlimit raised = limit;
        raised.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
        if (setrlimit(RLIMIT_NOFILE, &raised) == 0) {
            limit = raised;
        }
    }
    return static_cast<std::size_t>(std::min<rlim_t>(wanted, limit.rlim_cur));
#endif
}

} // namespace monitorservice
