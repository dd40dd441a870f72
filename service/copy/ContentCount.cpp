#include "copy/ContentCount.h"

#include <array>
#include <utility>

namespace monitorservice {

namespace {

struct Counted
{
    std::uint64_t ContentCount::*number;
    const char* one;
    const char* many;
};

constexpr std::array allCounted{
    Counted{&ContentCount::projects, "project", "projects"},
    Counted{&ContentCount::monitorings, "monitoring", "monitorings"},
    Counted{&ContentCount::points, "point", "points"},
    Counted{&ContentCount::samples, "sample", "samples"},
    Counted{&ContentCount::deliveries, "delivery", "deliveries"},
    Counted{&ContentCount::alarms, "alarm", "alarms"},
    Counted{&ContentCount::entries, "entry of the audit trail", "entries of the audit trail"},
    Counted{&ContentCount::tokens, "token", "tokens"},
};

} // namespace

ContentCount& ContentCount::operator+=(const ContentCount& other)
{
    for (const Counted& counted : allCounted) {
        this->*counted.number += other.*counted.number;
    }
    return *this;
}

void ContentCount::add(DocumentKind kind)
{
    monitorings += kind == DocumentKind::Cell ? 1 : 0;
    deliveries += kind == DocumentKind::History ? 1 : 0;
    alarms += kind == DocumentKind::Alarm ? 1 : 0;
    entries += kind == DocumentKind::Change ? 1 : 0;
}

std::string toText(const ContentCount& count)
{
    std::string text;
    for (const Counted& counted : allCounted) {
        const std::uint64_t number = count.*counted.number;
        if (number > 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(number) + ' ' +
                    (number == 1 ? counted.one : counted.many);
        }
    }
    return text.empty() ? "nothing" : text;
}

} // namespace monitorservice
