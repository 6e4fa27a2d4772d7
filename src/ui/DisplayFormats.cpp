#include "ui/DisplayFormats.h"
#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QDateTime localTime(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count());
}

} // namespace

QString clockTimeText(Instant instant)
{
    // a few locales, POSIX among them, have seconds in their short form
    static const QRegularExpression seconds(u"[:.]?ss?"_s);
    const QLocale locale;
    const QString format = locale.timeFormat(QLocale::ShortFormat).remove(seconds);
    return locale.toString(localTime(instant).time(), format);
}

QString formatDuration(double seconds)
{
    const qint64 total = std::llround(seconds);
    const qint64 hours = total / 3600;
    const qint64 minutes = (total - hours * 3600) / 60;
    if (hours == 0)
        return qtTrId("duration.m %lld").arg(minutes);
    if (minutes != 0)
        return qtTrId("duration.h_m %lld %lld").arg(hours).arg(minutes);
    return qtTrId("duration.h %lld").arg(hours);
}

QString relativeText(Instant then, Instant now)
{
    using namespace std::chrono;
    const auto passed = duration_cast<seconds>(now - then);
    const auto count = [passed](auto unit) { return static_cast<int>(passed / unit); };
    if (passed <= seconds(0))
        return qtTrId("relative.now");
    if (passed < minutes(1))
        return qtTrId("relative.seconds_ago %n", count(seconds(1)));
    if (passed < hours(1))
        return qtTrId("relative.minutes_ago %n", count(minutes(1)));
    if (passed < days(1))
        return qtTrId("relative.hours_ago %n", count(hours(1)));
    return qtTrId("relative.days_ago %n", count(days(1)));
}

QString agendaDateText(Instant now)
{
    return QLocale().toString(localTime(now).date(), qtTrId("agenda.date_format"));
}

std::optional<QUrl> mapsSearchURL(const QString &location)
{
    const QString place = location.trimmed();
    if (place.isEmpty())
        return {};
    return QUrl::fromEncoded("https://www.google.com/maps/search/?api=1&query="
                             + QUrl::toPercentEncoding(place));
}

} // namespace kestrel
