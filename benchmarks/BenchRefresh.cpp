#include "app/AppEnvironment.h"
#include "base/Clock.h"
#include "benchmarks/BudgetTable.h"
#include "benchmarks/Heartbeat.h"
#include "platform/linux/QtHttpTransport.h"
#include "support/FakeConnectivity.h"
#include "support/FakeDesktop.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeSecretStore.h"
#include "support/FakeUrlOpener.h"
#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QProcess>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr int accountCount = 10;
constexpr int calendarCount = 4;
constexpr int eventCount = 250;
constexpr int refreshCount = 20;
/// Milliseconds that the main thread may be away from its event loop.
constexpr double stallBudget = 8;

QString accountID(int index)
{
    return u"ACCOUNT-%1"_s.arg(index);
}

/// The sample Google with its load, as long as this object lives.
class LoadedGoogle final
{
public:
    LoadedGoogle()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationDirPath() + u"/kestrel-sample-google"_s,
                        { u"--until-stdin-closes"_s, u"--accept-sample-tokens"_s, u"--accounts"_s,
                          QString::number(accountCount), u"--calendars"_s, QString::number(calendarCount),
                          u"--events"_s, QString::number(eventCount) });
        if (m_process.waitForReadyRead(60'000))
            m_base = QUrl(QString::fromUtf8(m_process.readLine().trimmed()));
    }

    ~LoadedGoogle()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    [[nodiscard]] QUrl base() const { return m_base; }

private:
    QProcess m_process;
    QUrl m_base;
};

QStringList calendarsOf(GoogleProvider &google, const QString &account)
{
    QStringList ids;
    const auto calendars = QCoro::waitFor(google.loadCalendars(account));
    for (const ProviderCalendar &calendar : calendars.value_or(QList<ProviderCalendar>()))
        ids.append(calendar.id);
    return ids;
}

void benchmarkStall(benchmark::State &state)
{
    const LoadedGoogle server;
    const auto endpoints = GoogleEndpoints::at(server.base());
    if (!endpoints)
        return state.SkipWithError("the sample Google did not start");

    FakePreferenceStore preferenceStore;
    FakeSecretStore secrets;
    FakeConnectivity connectivity;
    FakeUrlOpener opener;
    QtHttpTransport transport(connectivity);
    const SystemClock clock;
    FakeDesktop desktop;
    QJsonArray accounts;
    for (int i = 0; i < accountCount; ++i) {
        secrets.secrets.insert(u"google.%1.refresh_token"_s.arg(accountID(i)),
                               "sample-refresh-" + QByteArray::number(i));
        accounts.append(CalendarAccount { accountID(i), u"google"_s, {}, u"Sample"_s, {}, {} }.toJson());
    }
    preferenceStore.setData(u"registeredAccounts.v1"_s, QJsonDocument(accounts).toJson());

    AppEnvironment environment(
        preferenceStore,
        { secrets, transport, opener, clock, *endpoints, { u"benchmark"_s, u"benchmark"_s }, u"benchmark"_s },
        desktop.services());
    for (int i = 0; i < accountCount; ++i) {
        const QStringList ids = calendarsOf(environment.google(), accountID(i));
        if (ids.size() != calendarCount)
            return state.SkipWithError("the calendars could not be listed");
        environment.preferences().setSelectedCalendarIDs(ids, accountID(i));
    }

    std::vector<double> stalls;
    for ([[maybe_unused]] auto iteration : state) {
        Heartbeat heartbeat;
        QCoro::waitFor(environment.refresh());
        stalls.push_back(heartbeat.longestGap());
    }
    if (environment.store().upcoming().size() < accountCount * calendarCount * eventCount / 2)
        return state.SkipWithError("the meetings did not arrive");
    report(state, std::move(stalls));
}

} // namespace

} // namespace kestrel

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"*.info=false"_s);
    benchmark::Initialize(&argc, argv);
    const std::string name = "longest stall of one refresh, 10 x 4 x 250";
    benchmark::RegisterBenchmark(name.c_str(), kestrel::benchmarkStall)->Iterations(kestrel::refreshCount);
    kestrel::BudgetTable table("ms", { { name, kestrel::stallBudget } });
    return table.run();
}
