#include "app/StatusText.h"
#include "app/AgendaText.h"
#include "app/AppEnvironment.h"
#include "app/MeetingJson.h"
#include "menubar/MenuBarController.h"
#include "ui/DisplayFormats.h"
#include <QJsonArray>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr qsizetype longestAgenda = 8;

QLatin1StringView name(PanelStatus::Stage stage)
{
    switch (stage) {
    case PanelStatus::Stage::SignedOut:
        return "signed-out"_L1;
    case PanelStatus::Stage::Free:
        return "free"_L1;
    case PanelStatus::Stage::Later:
        return "later"_L1;
    case PanelStatus::Stage::Soon:
        return "soon"_L1;
    case PanelStatus::Stage::Now:
        return "now"_L1;
    }
    return {};
}

bool isSignedIn(AppEnvironment &environment)
{
    const QList<CalendarAccount> accounts = environment.registry().accounts();
    return std::ranges::any_of(accounts, [&environment](const CalendarAccount &account) {
        return environment.google().oauth(account.id).isSignedIn();
    });
}

PanelStatus::Stage stageOf(const Meeting &next, std::chrono::minutes lead, Instant now)
{
    if (next.start <= now)
        return PanelStatus::Stage::Now;
    return next.start - now <= lead ? PanelStatus::Stage::Soon : PanelStatus::Stage::Later;
}

QJsonArray classes(const PanelStatus &status)
{
    QJsonArray classes { name(status.stage) };
    if (!status.trouble.isEmpty() && status.stage != PanelStatus::Stage::SignedOut)
        classes.append(name(PanelStatus::Stage::SignedOut));
    if (!status.call.inMeeting)
        return classes;
    classes.append("in-call"_L1);
    const std::initializer_list<std::pair<QLatin1StringView, bool>> parts {
        { "muted"_L1, !status.call.micOn },
        { "camera-off"_L1, !status.call.cameraOn },
        { "hand-raised"_L1, status.call.handRaised },
        { "sharing"_L1, status.call.sharing },
    };
    for (const auto &[part, holds] : parts) {
        if (holds)
            classes.append(part);
    }
    return classes;
}

} // namespace

PanelStatus panelStatus(AppEnvironment &environment, const MenuBarController &menuBar)
{
    const Instant now = environment.clock().now();
    PanelStatus status;
    status.label = menuBar.title();
    status.call = MeetStateSnapshot::of(environment.meetState());
    for (const Meeting &meeting : environment.store().upcoming()) {
        if (meeting.end <= now || status.agenda.size() == longestAgenda)
            continue;
        status.agenda.append(u"%1 – %2  %3"_s.arg(clockTimeText(meeting.start), clockTimeText(meeting.end),
                                                  terminalText(meeting.title)));
    }
    if (const QStringList accounts = environment.signedOutAccounts(); !accounts.isEmpty())
        status.trouble = qtTrId("signed_out.message %@").arg(accounts.join(u", "_s));
    if (const auto next = menuBar.nextMeeting(now)) {
        status.title = terminalText(next->title);
        status.stage = stageOf(*next, std::chrono::minutes(environment.preferences().leadTimeMinutes()), now);
    } else if (!isSignedIn(environment)) {
        status.stage = PanelStatus::Stage::SignedOut;
    }
    return status;
}

QString panelLine(const PanelStatus &status)
{
    QStringList parts { status.label, status.title };
    parts.removeAll(QString());
    return parts.join(u" · "_s);
}

QJsonObject waybarObject(const PanelStatus &status)
{
    QStringList toolTip { status.trouble };
    toolTip += status.agenda;
    toolTip.removeAll(QString());
    if (toolTip.isEmpty())
        toolTip.append(u"Kestrel"_s);
    return { { u"text"_s, status.label.toHtmlEscaped() },
             { u"alt"_s, name(status.stage) },
             { u"tooltip"_s, toolTip.join(u'\n').toHtmlEscaped() },
             { u"class"_s, classes(status) } };
}

QString statusText(AppEnvironment &environment)
{
    const EventStore &store = environment.store();
    const Instant now = environment.clock().now();
    QString text;
    for (const Meeting &meeting : store.ongoing(now))
        text += u"Now: %1\n"_s.arg(terminalText(meeting.title));
    for (const Meeting &meeting : store.nextUp(now))
        text += u"Next: %1, %2\n"_s.arg(terminalText(meeting.title), untilText(meeting.start, now));
    if (text.isEmpty())
        text = u"No meetings in the next 24 hours.\n"_s;
    const QList<CalendarAccount> accounts = environment.registry().accounts();
    for (const CalendarAccount &account : accounts) {
        const bool isSignedIn = environment.google().oauth(account.id).isSignedIn();
        text += u"Account: %1%2\n"_s.arg(accountName(account), isSignedIn ? QString() : u", not signed in"_s);
    }
    if (accounts.isEmpty())
        text += u"No account is connected. Sign in with: kestrel accounts add\n"_s;
    const auto lastRefresh = environment.lastRefresh();
    return text + u"Last refresh: %1\n"_s.arg(lastRefresh ? toInternetDateTime(*lastRefresh) : u"none yet"_s);
}

QJsonObject statusObject(AppEnvironment &environment)
{
    const EventStore &store = environment.store();
    const Instant now = environment.clock().now();
    QJsonArray accounts;
    for (const CalendarAccount &account : environment.registry().accounts()) {
        accounts.append(
            QJsonObject { { u"id"_s, account.id },
                          { u"email"_s, account.email ? QJsonValue(*account.email) : QJsonValue::Null },
                          { u"isSignedIn"_s, environment.google().oauth(account.id).isSignedIn() } });
    }
    const QList<Meeting> next = store.nextUp(now);
    const auto lastRefresh = environment.lastRefresh();
    return {
        { u"accounts"_s, accounts },
        { u"isRefreshing"_s, environment.isRefreshing() },
        { u"lastRefresh"_s,
          lastRefresh ? QJsonValue(toInternetDateTimeWithMilliseconds(*lastRefresh)) : QJsonValue::Null },
        { u"upcoming"_s, store.upcoming().size() },
        { u"ongoing"_s, toJson(store.ongoing(now)) },
        { u"next"_s, next.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(toJson(next.first())) },
    };
}

} // namespace kestrel
