#include "notify/MailText.h"

#include "notify/MailEncoding.h"

#include <array>
#include <charconv>
#include <cstdlib>

namespace monitorservice {

namespace {

// Six digits are more than a limit is given with; all that a double has would hide the number among them.
std::string number(double value)
{
    constexpr int digits = 6;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits).ptr;
    return {text.data(), end};
}

std::string number(const std::string& text)
{
    return number(std::strtod(text.c_str(), nullptr));
}

std::string count(std::size_t points)
{
    return std::to_string(points) + (points == 1 ? " point" : " points");
}

// A unit, with the blank before it; nothing when there is none.
std::string unit(const std::string& name)
{
    return name.empty() ? std::string() : ' ' + inOneLine(name);
}

std::string dailyUnit(const AlarmDetail& detail)
{
    constexpr std::int32_t percent = 1;
    return detail.dayVariationType == percent ? " %" : unit(detail.unit);
}

void appendReading(std::string& out, const AlarmDetail& detail)
{
    const std::string ofValues = unit(detail.unit);
    out += "  " + detail.time;
    if (!detail.depth.empty()) {
        out += ", depth " + inOneLine(detail.depth);
    }
    out += ": " + number(detail.value) + ofValues + ", counted from " + number(detail.reference) + ofValues;
    if (!detail.groupName.empty()) {
        out += "; limits of " + inOneLine(detail.groupName);
    }
    out += '\n';
    if (detail.totalExcess > 0) {
        out += "    total variation " + number(detail.total) + ofValues + ", limit " +
               number(detail.totalLimit) + ofValues + ": " + number(detail.totalExcess) + ofValues +
               " beyond\n";
    }
    if (detail.dailyExcess > 0) {
        const std::string daily = dailyUnit(detail);
        out += "    daily variation " + number(detail.daily) + daily + ", limit " + number(detail.dayLimit) +
               daily + ": " + number(detail.dailyExcess) + daily + " beyond\n";
    }
}

void appendPoint(std::string& out, const PointNews& point)
{
    out += inOneLine(point.point) + (point.before ? ", further beyond its limit\n" : ", new\n");
    for (const AlarmDetail& detail : point.details) {
        appendReading(out, detail);
    }
    out += '\n';
}

std::string subjectOf(const Notification& notification)
{
    const std::vector<PointNews>& points = notification.news.points;
    const std::string who =
        points.size() == 1 ? points.front().point : count(points.size() + notification.news.left);
    return "Alarm: " + notification.alarm.cellName + ", " + notification.subCategory + ": " + who +
           (points.size() == 1 ? " beyond its limit" : " beyond their limits");
}

std::string bodyOf(const Notification& notification)
{
    const News& news = notification.news;
    std::string text = "Project: " + inOneLine(notification.project) +
                       "\nMonitoring: " + inOneLine(notification.alarm.cellName) + ", " +
                       inOneLine(notification.subCategory) + "\nAlarm: " + notification.alarm.id +
                       ", raised at " + notification.alarm.raisedAt + ", " + count(news.pointCount) + "\n\n";
    for (const PointNews& point : news.points) {
        appendPoint(text, point);
    }
    if (news.left > 0) {
        text += "The next mail tells of " + count(news.left) + " more.\n\n";
    }
    text += "What is new of this alarm is told again in ten minutes at the earliest.\n";
    return text;
}

} // namespace

MailText mailTextOf(const Notification& notification)
{
    return {subjectOf(notification), bodyOf(notification)};
}

std::string mailOf(const Notification& notification, const std::string& from)
{
    const MailText text = mailTextOf(notification);
    const std::string domain = from.substr(from.find('@') + 1);
    return "From: " + from + "\r\nTo: " + notification.recipient +
           "\r\nSubject: " + headerText(text.subject) + "\r\nDate: " + mailDate(notification.writtenAt) +
           "\r\nMessage-ID: <" + notification.id + '@' + domain +
           ">\r\nAuto-Submitted: auto-generated\r\nMIME-Version: 1.0\r\n"
           "Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n" +
           quotedPrintable(text.body);
}

} // namespace monitorservice
