#include "store/postgres/SocketWait.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <poll.h>
#endif

namespace monitorservice {

bool waitForSocket(int socket, bool alsoToWrite, std::chrono::milliseconds patience)
{
    using std::chrono::steady_clock;
    const steady_clock::time_point end = steady_clock::now() + patience;
    constexpr std::chrono::milliseconds longest(std::numeric_limits<int>::max());
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
        const int timeout = static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), longest).count());
        const auto events = static_cast<short>(alsoToWrite ? POLLIN | POLLOUT : POLLIN);
#ifdef _WIN32
        WSAPOLLFD waited{static_cast<SOCKET>(socket), events, 0};
        const int ready = WSAPoll(&waited, 1, timeout);
        const bool isInterrupted = false;
#else
        pollfd waited{socket, events, 0};
        const int ready = poll(&waited, 1, timeout);
        const bool isInterrupted = ready < 0 && errno == EINTR;
#endif
        if (!isInterrupted) {
            return ready != 0; // whoever uses the socket next learns of a failure
        }
    }
}

} // namespace monitorservice
