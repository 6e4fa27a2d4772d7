#include "demo/SampleAccounts.h"
#include <QDateTime>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

QJsonObject SampleCalendar::listEntry() const
{
    QJsonObject entry { { u"kind"_s, u"calendar#calendarListEntry"_s },
                        { u"id"_s, id },
                        { u"summary"_s, summary },
                        { u"timeZone"_s, QString::fromLatin1(zone.id()) },
                        { u"backgroundColor"_s, backgroundColor },
                        { u"foregroundColor"_s, u"#000000"_s },
                        { u"selected"_s, true },
                        { u"accessRole"_s, accessRole } };
    if (isPrimary)
        entry.insert(u"primary"_s, true);
    return entry;
}

void SampleCalendar::put(SampleEvent event)
{
    remove(event.id);
    const auto place = std::ranges::upper_bound(events, event.start, {}, &SampleEvent::start);
    events.insert(place, std::move(event));
}

bool SampleCalendar::remove(const QString &eventId)
{
    return std::erase_if(events, [&](const SampleEvent &event) { return event.id == eventId; }) > 0;
}

SampleCalendar *SampleAccount::calendar(const QString &id)
{
    const auto found = std::ranges::find_if(calendars, [&](const SampleCalendar &each) {
        return each.id == id || (each.isPrimary && id == u"primary");
    });
    return found == calendars.end() ? nullptr : &*found;
}

QJsonObject eventTime(Instant instant, const QTimeZone &zone)
{
    const auto local = QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), zone);
    return { { u"dateTime"_s, local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate) },
             { u"timeZone"_s, QString::fromLatin1(zone.id()) } };
}

} // namespace kestrel::demo
