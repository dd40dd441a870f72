#pragma once

#include "http/HttpServer.h"

#include <string>

namespace monitorservice {

/// The counters in the Prometheus text format, version 0.0.4.
std::string metricsText(const HttpCounters& counters);

} // namespace monitorservice
