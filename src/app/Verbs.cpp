#include "app/Verbs.h"
#include "app/AgendaText.h"
#include "app/AppDelegate.h"
#include "app/MeetingJson.h"
#include "app/StatusText.h"
#include "google/AccountRegistry.h"
#include "google/CalendarDecoder.h"
#include "google/GoogleEventMapper.h"
#include "google/GoogleProvider.h"
#include "platform/HttpTransport.h"
#include "platform/SecretStore.h"
#include <QFile>
#include <QJsonDocument>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

VerbResult done(const QString &output)
{
    return { ExitCode::Success, output, {} };
}

VerbResult failed(int exitCode, const QString &error)
{
    return { exitCode, {}, error.endsWith(u'\n') ? error : error + u'\n' };
}

QString jsonText(const auto &value, QJsonDocument::JsonFormat format = QJsonDocument::Indented)
{
    const QString text = QString::fromUtf8(QJsonDocument(value).toJson(format));
    return text.endsWith(u'\n') ? text : text + u'\n';
}

/// What a person can do about a failed sign-in or sign-out.
QString adviceOn(const KeychainError &error)
{
    switch (static_cast<SecretStatus>(error.status)) {
    case SecretStatus::Unavailable:
        return u"\nNo keyring answers. Install gnome-keyring, KWallet or KeePassXC with its Secret Service, "
               u"or start "
               "Kestrel with --secret-store file (docs/secrets.md)."_s;
    case SecretStatus::Locked:
    case SecretStatus::Dismissed:
        return u"\nThe keyring is locked. Unlock it, and try again."_s;
    default:
        return u"\nThe place where tokens are kept could not be read or written; Kestrel's log says why."_s;
    }
}

VerbResult failed(const AuthError &error)
{
    const auto *keychain = std::get_if<KeychainError>(&error);
    return failed(ExitCode::Failed, description(error) + (keychain ? adviceOn(*keychain) : QString()));
}

} // namespace

Verbs::Verbs(AccountRegistry &registry, GoogleProvider &google, QString missingClient)
    : m_registry(registry)
    , m_google(google)
    , m_missingClient(std::move(missingClient))
{
}

void Verbs::setDelegate(AppDelegate *delegate)
{
    m_delegate = delegate;
    m_environment = delegate ? &delegate->environment() : nullptr;
}

QCoro::Task<VerbResult> Verbs::run(QStringList arguments)
{
    const auto line = CommandLine::parse(QStringList { u"kestrel"_s } + arguments);
    if (!line)
        co_return failed(ExitCode::Usage, line.error());
    if (line->verb == "accounts"_L1) {
        if (line->arguments[0] == "add"_L1)
            co_return co_await addAccount();
        if (line->arguments[0] == "remove"_L1)
            co_return co_await removeAccount(line->arguments[1]);
        if (line->arguments[0] == "sign-in"_L1)
            co_return co_await signInAgain(line->arguments[1]);
        co_return listAccounts(line->json);
    }
    if (!m_environment)
        co_return failed(ExitCode::NotRunning,
                         u"Another Kestrel command is at work; try again in a moment."_s);
    if (line->verb.isEmpty())
        co_return done(u"Kestrel is running already. Show its agenda with: kestrel show\n"_s);
    if (line->verb == "agenda"_L1)
        co_return agenda(line->json);
    if (line->verb == "status"_L1) {
        m_isFollowed = m_isFollowed || line->follow;
        co_return status(*line);
    }
    if (line->verb == "refresh"_L1)
        co_return co_await refresh();
    if (line->verb == "join"_L1)
        co_return join();
    if (line->verb == "action"_L1)
        co_return action(line->arguments[0]);
    if (line->verb == "dismiss"_L1)
        co_return dismiss();
    if (line->verb == "show"_L1)
        co_return show();
    if (line->verb == "settings"_L1)
        co_return settings();
    if (line->verb == "doctor"_L1)
        co_return co_await doctor(line->json, line->testAlert);
    co_return failed(ExitCode::Usage, u"\"%1\" is not for a running Kestrel."_s.arg(line->verb));
}

VerbResult Verbs::agenda(bool json) const
{
    const EventStore &store = m_environment->store();
    if (json)
        return done(jsonText(toJson(store.upcoming())));
    if (m_registry.accounts().isEmpty())
        return done(u"No account is connected. Sign in with: kestrel accounts add\n"_s);
    if (!m_environment->lastRefresh())
        return done(u"The calendars have not been read yet.\n"_s);
    return done(agendaText(store, m_environment->clock().now()) + signedOutText());
}

QString Verbs::signedOutText() const
{
    QString text;
    for (const CalendarAccount &account : m_registry.accounts()) {
        if (m_google.oauth(account.id).isSignedOut()) {
            text +=
                u"%1 is not signed in, and its meetings are missing. Sign in again with: kestrel accounts "
                "sign-in %2\n"_s.arg(accountName(account), account.id);
        }
    }
    return text;
}

VerbResult Verbs::status(const CommandLine &line) const
{
    if (line.json)
        return done(jsonText(statusObject(*m_environment),
                             line.follow ? QJsonDocument::Compact : QJsonDocument::Indented));
    if (!line.follow && !line.waybar)
        return done(statusText(*m_environment));
    const PanelStatus status = panelStatus(*m_environment, m_delegate->menuBar());
    return done(line.waybar ? jsonText(waybarObject(status), QJsonDocument::Compact)
                            : panelLine(status) + u'\n');
}

QCoro::Task<VerbResult> Verbs::refresh()
{
    co_await m_environment->refresh();
    const auto accounts = countOf(m_registry.accounts().size(), "account"_L1, "accounts"_L1);
    const auto meetings = countOf(m_environment->store().upcoming().size(), "meeting"_L1, "meetings"_L1);
    co_return done(u"%1, %2\n"_s.arg(accounts, meetings));
}

VerbResult Verbs::join()
{
    const auto meeting = m_delegate->joinNextMeeting();
    if (!meeting)
        return failed(ExitCode::Failed, u"There is no meeting with a link to join."_s);
    return done(u"Joining: %1\n"_s.arg(terminalText(meeting->title)));
}

VerbResult Verbs::action(const QString &name)
{
    const auto action = hotkeyActionFromRaw(name);
    if (action == HotkeyAction::join)
        return join();
    m_delegate->perform(*action);
    return done({});
}

VerbResult Verbs::dismiss()
{
    m_environment->presenter().dismissAll();
    return done({});
}

VerbResult Verbs::show()
{
    if (!m_delegate->showAgenda())
        return failed(ExitCode::Failed, u"This Kestrel runs without a display."_s);
    return done({});
}

VerbResult Verbs::settings()
{
    if (!m_delegate->showSettings())
        return failed(ExitCode::Failed, u"This Kestrel runs without a display."_s);
    return done({});
}

QCoro::Task<VerbResult> Verbs::doctor(bool json, bool withTestAlert)
{
    const DoctorReport report = co_await m_delegate->doctor().examine(withTestAlert);
    co_return VerbResult { report.isGood() ? ExitCode::Success : ExitCode::Failed,
                           json ? doctorJson(report) : doctorText(report),
                           {} };
}

QCoro::Task<VerbResult> Verbs::addAccount()
{
    if (!m_missingClient.isEmpty())
        co_return failed(ExitCode::Failed, m_missingClient);
    const auto account = co_await m_google.signIn();
    if (!account)
        co_return failed(account.error());
    const QString done = u"Signed in: %1 (%2)\n"_s.arg(accountName(*account), account->id);
    if (!m_registry.isSaved()) {
        co_return {
            ExitCode::Failed, done,
            u"The account could not be saved, perhaps because the disk is full. It is forgotten when this "
            "Kestrel ends, unless something could be saved before.\n"_s
        };
    }
    co_return kestrel::done(done);
}

QCoro::Task<VerbResult> Verbs::signInAgain(QString name)
{
    if (!m_missingClient.isEmpty())
        co_return failed(ExitCode::Failed, m_missingClient);
    const auto accountID = accountCalled(name);
    if (!accountID)
        co_return failed(ExitCode::Failed, accountID.error());
    const auto signedIn = co_await m_google.signInAgain(*accountID);
    co_return signedIn ? done(u"Signed in: %1\n"_s.arg(name)) : failed(signedIn.error());
}

VerbResult Verbs::listAccounts(bool json) const
{
    QJsonArray array;
    QString text;
    for (const CalendarAccount &account : m_registry.accounts()) {
        array.append(account.toJson());
        text += u"%1  %2\n"_s.arg(account.id, accountName(account));
    }
    if (json)
        return done(jsonText(array));
    return done(text.isEmpty() ? u"No account is connected. Sign in with: kestrel accounts add\n"_s : text);
}

std::expected<QString, QString> Verbs::accountCalled(const QString &name) const
{
    QStringList ids;
    for (const CalendarAccount &account : m_registry.accounts()) {
        if (account.id == name || account.email == name)
            ids.append(account.id);
    }
    if (ids.isEmpty())
        return std::unexpected(u"No account is called \"%1\". kestrel accounts list shows them."_s.arg(name));
    // The same person may be signed in twice under one address.
    if (ids.size() > 1)
        return std::unexpected(u"Several accounts are called \"%1\"; give the identifier."_s.arg(name));
    return ids.first();
}

QCoro::Task<VerbResult> Verbs::removeAccount(QString name)
{
    const auto accountID = accountCalled(name);
    if (!accountID)
        co_return failed(ExitCode::Failed, accountID.error());
    const auto signedOut = co_await m_google.signOut(*accountID);
    if (!signedOut)
        co_return failed(ExitCode::Failed, signedOut.error().description() + adviceOn(signedOut.error()));
    co_return done(u"Signed out: %1\n"_s.arg(name));
}

VerbResult meetingsOfFile(const CommandLine &line)
{
    std::optional<Instant> now;
    if (line.now) {
        now = parseInternetDateTime(*line.now);
        if (!now)
            return failed(ExitCode::Usage, u"--now wants a time like 2026-03-01T09:30:00Z."_s);
    }
    const QString &path = line.arguments[0];
    QFile file(path);
    const bool opened =
        path == "-"_L1 ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!opened)
        return failed(ExitCode::Failed, u"%1: %2"_s.arg(path, file.errorString()));
    QByteArray json;
    for (QByteArray chunk; json.size() <= HttpTransport::largestAnswer;) {
        chunk = file.read(HttpTransport::largestAnswer + 1 - json.size());
        if (chunk.isEmpty())
            break;
        json += chunk;
    }
    if (json.size() > HttpTransport::largestAnswer)
        return failed(ExitCode::Failed, u"%1: answer too large"_s.arg(path));
    const auto answer = decodeEventsList(json);
    if (!answer)
        return failed(ExitCode::Failed,
                      u"%1: Decoding failed: %2"_s.arg(path, terminalText(answer.error().description)));

    const GoogleEventMapper mapper;
    const GoogleEventMapper::Origin origin { line.account, line.calendar, {}, {}, MeetLaunchMode::Tab };
    QList<Meeting> meetings;
    for (const Google::Event &event : answer->items) {
        if (auto meeting = mapper.map(event, origin))
            meetings.append(*std::move(meeting));
    }
    if (now) {
        const FixedClock clock(*now);
        EventStore store(clock);
        store.replace(line.account, meetings);
        meetings = store.upcoming();
    }
    return done(line.json ? jsonText(toJson(meetings)) : meetingsText(meetings));
}

} // namespace kestrel
