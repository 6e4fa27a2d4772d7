#pragma once
#include "base/Instant.h"
#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QTimeZone>
#include <vector>

namespace kestrel::demo {

/// One event, or the first of a row that repeats for ever.
struct SampleEvent
{
    QString id;
    Instant start;
    Instant end;
    QByteArray json; ///< as the API writes it, made once: an answer is a join of these
    std::chrono::minutes period { 0 }; ///< 0: happens once
    QJsonObject fields {}; ///< of a repeating event, whose instances are made as they are asked for
};

struct SampleCalendar
{
    QString id;
    QString summary;
    bool isPrimary = false;
    QString accessRole { QStringLiteral("owner") };
    QString backgroundColor;
    QTimeZone zone;
    std::vector<SampleEvent> events {}; ///< by start

    /// As calendarList writes it.
    [[nodiscard]] QJsonObject listEntry() const;
    /// Keeps the order. An event of the same id gives way.
    void put(SampleEvent event);
    bool remove(const QString &eventId);
};

struct SampleAccount
{
    QString email;
    QString name;
    std::vector<SampleCalendar> calendars {};

    /// By its id, or "primary". Null when there is none.
    [[nodiscard]] SampleCalendar *calendar(const QString &id);
};

/// {"dateTime": …, "timeZone": …}, with the zone's offset at that instant.
[[nodiscard]] QJsonObject eventTime(Instant instant, const QTimeZone &zone);

} // namespace kestrel::demo
