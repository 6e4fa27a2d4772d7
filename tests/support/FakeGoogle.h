#pragma once
#include "auth/GoogleOAuth.h"
#include "base/Clock.h"
#include "model/CalendarAccount.h"
#include "support/FakeHttpTransport.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeSecretStore.h"
#include "support/FakeUrlOpener.h"
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kestrel {

/// Everything that the sessions of Google accounts stand on, at noon of one day in March.
struct FakeGoogle
{
    struct Event
    {
        QString id;
        std::chrono::minutes startsIn { 60 };
    };

    FakePreferenceStore preferences;
    FakeSecretStore secrets;
    FakeHttpTransport transport;
    FakeUrlOpener opener;
    FixedClock clock { *parseInternetDateTime(u"2025-03-03T12:00:00Z") };
    GoogleEndpoints endpoints { QUrl(QStringLiteral("https://accounts.example.com/o/oauth2/v2/auth")),
                                QUrl(QStringLiteral("https://oauth2.example.com/token")),
                                QUrl(QStringLiteral("https://oauth2.example.com/revoke")),
                                QUrl(QStringLiteral("https://openid.example.com/v1/userinfo")),
                                QUrl(QStringLiteral("https://calendar.example.com")) };
    GoogleClient client { QStringLiteral("client.example.com"), QStringLiteral("secret") };

    [[nodiscard]] AuthServices services()
    {
        return { secrets, transport, opener, clock, endpoints, client, QStringLiteral("test") };
    }

    /// An account with tokens that are good for years.
    CalendarAccount account(const QString &id)
    {
        const AccessToken token { QStringLiteral("token of ") + id, clock.now() + std::chrono::years(5) };
        secrets.secrets.insert(QStringLiteral("google.%1.access_token").arg(id), token.toJson());
        secrets.secrets.insert(QStringLiteral("google.%1.refresh_token").arg(id), "refresh-" + id.toUtf8());
        CalendarAccount account;
        account.id = id;
        account.providerID = QStringLiteral("google");
        account.email = id.toLower() + QStringLiteral("@example.com");
        account.displayName = QStringLiteral("Google Calendar");
        return account;
    }

    [[nodiscard]] static QString eventsPath(const QString &calendarID = QStringLiteral("primary"))
    {
        return QStringLiteral("/calendar/v3/calendars/%1/events").arg(calendarID);
    }

    void answerEvents(const QString &calendarID, const QList<Event> &events)
    {
        transport.answer(eventsPath(calendarID), 200, page(events));
    }

    [[nodiscard]] QByteArray page(const QList<Event> &events) const
    {
        QJsonArray items;
        for (const Event &event : events) {
            const Instant start = clock.now() + event.startsIn;
            const auto time = [](Instant instant) {
                return QJsonObject { { QStringLiteral("dateTime"), toInternetDateTime(instant) } };
            };
            items.append(QJsonObject { { QStringLiteral("id"), event.id },
                                       { QStringLiteral("summary"), event.id },
                                       { QStringLiteral("start"), time(start) },
                                       { QStringLiteral("end"), time(start + std::chrono::minutes(30)) } });
        }
        return QJsonDocument(QJsonObject { { QStringLiteral("items"), items } }).toJson();
    }

    /// Lets everything go on that does not wait for the transport.
    static void settle()
    {
        for (int turn = 0; turn < 50; ++turn)
            QCoreApplication::processEvents();
    }

    /// Lets also what waits for the transport come to its end, so that no task is left behind.
    void finish()
    {
        transport.setOnline(true);
        transport.release();
        settle();
    }
};

} // namespace kestrel
