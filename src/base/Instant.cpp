#include "base/Instant.h"
#include <QDateTime>
#include <QTimeZone>
#include <algorithm>

using namespace std::chrono;

namespace kestrel {

namespace {

/// Reads `digits` decimal digits at `position` and moves it past them; -1 when they are not all digits.
int readDigits(QStringView text, qsizetype &position, int digits)
{
    if (position + digits > text.size())
        return -1;
    int value = 0;
    for (int i = 0; i < digits; ++i) {
        const char16_t c = text[position++].unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

bool readCharacter(QStringView text, qsizetype &position, char16_t expected)
{
    if (position == text.size())
        return false;
    return text[position++].unicode() == expected;
}

} // namespace

milliseconds secondsSpan(double seconds)
{
    // a span beyond a thousand years is somebody's slip, and would leave the range of what it is added to
    constexpr double most = 1000.0 * 366 * 24 * 3600;
    return duration_cast<milliseconds>(duration<double>(std::clamp(seconds, -most, most)));
}

QString toInternetDateTime(Instant instant)
{
    const auto whole = floor<seconds>(instant);
    return QDateTime::fromMSecsSinceEpoch(milliseconds(whole.time_since_epoch()).count(), Qt::UTC)
        .toString(Qt::ISODate);
}

QString toInternetDateTimeWithMilliseconds(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

// Written out rather than left to QDateTime: that one also accepts bare dates, week dates and missing zones,
// and a page of events holds hundreds of date-times.
std::optional<Instant> parseInternetDateTime(QStringView text)
{
    qsizetype at = 0;
    const int year = readDigits(text, at, 4);
    if (year < 0 || !readCharacter(text, at, u'-'))
        return {};
    const int month = readDigits(text, at, 2);
    if (month < 0 || !readCharacter(text, at, u'-'))
        return {};
    const int day = readDigits(text, at, 2);
    if (day < 0 || !readCharacter(text, at, u'T'))
        return {};
    const int hour = readDigits(text, at, 2);
    if (hour < 0 || hour > 23 || !readCharacter(text, at, u':'))
        return {};
    const int minute = readDigits(text, at, 2);
    if (minute < 0 || minute > 59 || !readCharacter(text, at, u':'))
        return {};
    const int second = readDigits(text, at, 2);
    if (second < 0 || second > 59)
        return {};

    int millisecond = 0;
    if (at < text.size() && text[at] == u'.') {
        ++at;
        const qsizetype first = at;
        for (int weight = 100; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at, weight /= 10)
            millisecond += weight * (text[at].unicode() - u'0');
        if (at == first)
            return {};
    }

    if (at >= text.size())
        return {};
    minutes offset { 0 };
    const char16_t zone = text[at++].unicode();
    if (zone == u'+' || zone == u'-') {
        const int offsetHours = readDigits(text, at, 2);
        if (offsetHours < 0 || offsetHours > 23 || !readCharacter(text, at, u':'))
            return {};
        const int offsetMinutes = readDigits(text, at, 2);
        if (offsetMinutes < 0 || offsetMinutes > 59)
            return {};
        offset = hours(offsetHours) + minutes(offsetMinutes);
        if (zone == u'-')
            offset = -offset;
    } else if (zone != u'Z') {
        return {};
    }
    if (at != text.size())
        return {};

    const year_month_day date { std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                std::chrono::day(static_cast<unsigned>(day)) };
    if (!date.ok())
        return {};
    return Instant(sys_days(date)) + hours(hour) + minutes(minute) + seconds(second)
        + milliseconds(millisecond) - offset;
}

} // namespace kestrel
