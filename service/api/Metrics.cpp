#include "api/Metrics.h"

namespace monitorservice {

namespace {

void append(std::string& out, const std::string& name, const std::string& type, const std::string& help,
            std::uint64_t value)
{
    out += "# HELP " + name + " " + help + "\n# TYPE " + name + " " + type + "\n" + name + " " +
           std::to_string(value) + "\n";
}

} // namespace

std::string metricsText(const HttpCounters& counters)
{
    std::string text;
    append(text, "monitor_service_requests_total", "counter", "Requests that reached the service.",
           counters.requests);
    append(text, "monitor_service_requests_in_progress", "gauge", "Requests waiting or being answered.",
           counters.requestsInProgress);
    append(text, "monitor_service_connections_total", "counter", "Connections accepted.",
           counters.connections);
    append(text, "monitor_service_connections_open", "gauge", "Connections open.", counters.openConnections);
    append(text, "monitor_service_body_bytes", "gauge", "Bytes of bodies being received or handled.",
           counters.bodyBytes);
    text += "# HELP monitor_service_answers_total Answers by the hundreds of their status.\n"
            "# TYPE monitor_service_answers_total counter\n";
    for (std::size_t hundreds = 1; hundreds < counters.answers.size(); ++hundreds) {
        text += "monitor_service_answers_total{status=\"" + std::to_string(hundreds) + "xx\"} " +
                std::to_string(counters.answers.at(hundreds)) + "\n";
    }
    return text;
}

} // namespace monitorservice
