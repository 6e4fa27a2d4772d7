#include "alerts/AlertPresenter.h"
#include "alerts/AlertScheduler.h"
#include "app/Desktop.h"
#include "base/Clock.h"
#include "benchmarks/BudgetTable.h"
#include "benchmarks/Heartbeat.h"
#include "command/InstancePlace.h"
#include "google/AccountRegistry.h"
#include "google/GoogleProvider.h"
#include "hotkeys/HotkeyDispatcher.h"
#include "menubar/AgendaModel.h"
#include "menubar/AgendaPopover.h"
#include "menubar/MeetingOpener.h"
#include "menubar/RefreshControl.h"
#include "model/EventStore.h"
#include "platform/linux/AbsoluteWakeTimer.h"
#include "platform/null/NullScreens.h"
#include "preferences/Preferences.h"
#include "settings/SettingsWindow.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeGoogle.h"
#include "support/FakeNotifications.h"
#include "support/FakePreferenceStore.h"
#include "support/FakeUrlOpener.h"
#include "ui/QuickScene.h"
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QQuickWindow>
#include <QTranslator>
#include <QUrl>
#include <atomic>
#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr int laterShows = 30;
constexpr int restackings = 20;
constexpr int alerts = 200;

class Control final : public RefreshControl
{
public:
    [[nodiscard]] bool isRefreshing() const override { return false; }
    [[nodiscard]] std::optional<Instant> lastRefresh() const override { return {}; }
    void startRefresh() override { }
};

Meeting meeting(int number, Instant start)
{
    Meeting made;
    made.id = u"account:%1"_s.arg(number);
    made.accountID = u"account"_s;
    made.title = u"Weekly planning of everything that floats, number %1"_s.arg(number);
    made.start = start;
    made.end = start + 30min;
    made.location = u"Harbour office, second floor"_s;
    made.meetingURL = QUrl(u"https://meet.google.com/kes-demo-aaa"_s);
    made.platform = MeetingPlatform::Kind::GoogleMeet;
    made.canonicalURL = QUrl(u"https://calendar.google.com/calendar/event?eid=1"_s);
    made.calendarColorHex = u"#7986CB"_s;
    return made;
}

/// Nothing of the person's.
InstancePlace place()
{
    InstancePlace made;
    made.dataFolder = QDir::tempPath();
    made.soundCache = QDir::tempPath();
    return made;
}

/// A desktop with an account and a day of meetings.
struct Day
{
    Day()
    {
        registry.add({ u"account"_s, u"google"_s, u"robin.sample@example.com"_s, u"Robin"_s, {}, {} });
        QList<Meeting> meetings;
        for (int i = 0; i < 12; ++i)
            meetings.append(meeting(i, clock.now() - 10min + i * 20min));
        store.replace(u"account"_s, meetings);
        // as Kestrel does some seconds after its start
        services.scene.prepare();
    }

    std::unique_ptr<Desktop> desktop = Desktop::make(true, place());
    DesktopServices services = desktop->services();
    SystemClock clock;
    FakePreferenceStore preferenceStore;
    Preferences preferences { preferenceStore };
    EventStore store { clock };
    AccountRegistry registry { preferenceStore };
    FakeUrlOpener urls;
    MeetingOpener opener { registry,        preferences,     urls, services.applications,
                           services.helper, services.screens };
    Control control;
};

/// Runs `show` and waits for the next frame of a window; milliseconds from the call to the end of that frame.
template<typename Show>
double untilFrame(Show show)
{
    QEventLoop loop;
    QElapsedTimer timer;
    double taken = 0;
    QSet<QWindow *> before;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            before.insert(window);
    }
    timer.start();
    show();
    QList<QMetaObject::Connection> connections;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        auto *quick = qobject_cast<QQuickWindow *>(window);
        if (!quick || before.contains(window) || !window->isVisible())
            continue;
        connections.append(QObject::connect(quick, &QQuickWindow::frameSwapped, &loop, [&] {
            if (taken == 0)
                taken = static_cast<double>(timer.nsecsElapsed()) * 1e-6;
            loop.quit();
        }));
    }
    QTimer::singleShot(5s, &loop, &QEventLoop::quit);
    if (!connections.isEmpty())
        loop.exec();
    for (const auto &connection : connections)
        QObject::disconnect(connection);
    return taken;
}

void settle(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A window that is shown the first time in this process, or again and again after that.
enum class Showing { First, Later };

/// Reports what `show` takes to the first frame, the first time or the later ones, before each of which
/// `hide` is called.
template<typename Show, typename Hide>
void benchmarkShows(benchmark::State &state, Showing showing, Show show, Hide hide)
{
    std::vector<double> times;
    for ([[maybe_unused]] auto iteration : state) {
        const double first = untilFrame([&] { show(0); });
        if (showing == Showing::First)
            times.push_back(first);
        for (int i = 1; showing == Showing::Later && i <= laterShows; ++i) {
            settle(400ms);
            hide();
            settle(400ms);
            times.push_back(untilFrame([&] { show(i); }));
        }
    }
    hide();
    settle(50ms);
    report(state, times);
}

void benchmarkPopover(benchmark::State &state, Showing showing)
{
    Day day;
    settle(200ms);
    AgendaModel model(day.store, day.registry, day.preferences, day.control, day.opener, day.clock);
    AgendaPopover popover(day.services.scene, day.services.windows, day.services.screens, model, {});
    benchmarkShows(state, showing, [&](int) { popover.show(); }, [&] { popover.hide(); });
}

/// Cards on the screen.
struct Cards
{
    explicit Cards(Day &from)
        : day(from)
        , presenter(day.preferences, day.opener, day.clock, day.services.scene, day.services.windows,
                    day.services.screens, day.services.sounds, day.services.notifications, day.services.theme)
    {
        day.preferences.setPlaySoundOnAlert(false);
        settle(200ms);
    }
    void present(int number) { presenter.present(meeting(number, day.clock.now() + 5min)); }

    Day &day;
    AlertPresenter presenter;
};

void benchmarkCards(benchmark::State &state, Showing showing)
{
    Day day;
    Cards cards(day);
    benchmarkShows(
        state, showing, [&](int number) { cards.present(number); }, [&] { cards.presenter.dismissAll(); });
}

void benchmarkRestacking(benchmark::State &state)
{
    Day day;
    Cards cards(day);
    std::vector<double> gaps;
    for ([[maybe_unused]] auto iteration : state) {
        for (int i = 0; i < 60; ++i)
            cards.present(i);
        settle(1s);
        for (int i = 0; i < restackings; ++i) {
            Heartbeat heartbeat;
            cards.presenter.dismiss(u"account:%1"_s.arg(i));
            settle(400ms);
            gaps.push_back(heartbeat.longestGap());
        }
        cards.presenter.dismissAll();
    }
    report(state, gaps);
}

void benchmarkSettings(benchmark::State &state, Showing showing)
{
    Day day;
    settle(200ms);
    FakeGoogle google;
    GoogleProvider provider(day.registry, google.services());
    HotkeyDispatcher dispatcher(day.services.shortcuts);
    SettingsModel model({ day.preferences,
                          day.registry,
                          provider,
                          day.control,
                          day.opener,
                          day.clock,
                          day.services.sounds,
                          day.services.loginItem,
                          day.services.browser,
                          dispatcher,
                          day.services.keyMonitor,
                          {} });
    SettingsWindow window(day.services.scene, day.services.screens, model);
    // the longest tab
    benchmarkShows(
        state, showing, [&](int) { window.show(SettingsModel::Tab::Meetings); }, [&] { window.close(); });
}

/// Notes when it is first asked whether cards can be placed, which is the first thing that presenting asks.
class NotingWindows final : public FloatingWindows
{
public:
    [[nodiscard]] WindowingCondition condition() const override { return {}; }
    [[nodiscard]] bool canPlaceWindows() const override
    {
        const Instant now = SystemClock().now();
        if (due && now >= *due) {
            lateness.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::system_clock::now()
                                                          - std::chrono::system_clock::time_point(*due))
                    .count());
            due.reset();
        }
        return false;
    }
    void prepare(QWindow & /*window*/, Kind /*kind*/) override { }
    void shown(QWindow & /*window*/, Kind /*kind*/) override { }
    void takeFocus(QWindow & /*window*/) override { }
    void setInputRegion(QWindow & /*window*/, const QRegion & /*region*/) override { }
    void setBlurRegion(QWindow & /*window*/, const QRegion & /*region*/) override { }
    [[nodiscard]] bool canWatchPresses() const override { return false; }
    void watchPresses(bool /*watch*/) override { }

    mutable std::optional<Instant> due;
    mutable std::vector<double> lateness;
};

/// Alerts one after the other while a thread a core does nothing but count.
void benchmarkLateness(benchmark::State &state)
{
    Day day;
    FakeNotifications notifications;
    NotingWindows windows;
    AlertPresenter presenter(day.preferences, day.opener, day.clock, day.services.scene, windows,
                             day.services.screens, day.services.sounds, notifications, day.services.theme);
    day.preferences.setPlaySoundOnAlert(false);
    day.preferences.setSecondaryAlertOneMinute(false);
    AbsoluteWakeTimer timer;
    AlertScheduler scheduler(day.store, presenter, day.preferences, day.clock, timer);
    std::atomic<bool> isOver = false;
    std::vector<std::jthread> load;
    for (unsigned i = 0; i < std::max(2U, std::thread::hardware_concurrency()); ++i)
        load.emplace_back([&isOver] {
            volatile unsigned counted = 0;
            while (!isOver.load(std::memory_order_relaxed))
                counted = counted + 1;
        });
    for ([[maybe_unused]] auto iteration : state) {
        for (int i = 0; i < alerts; ++i) {
            const Instant due = day.clock.now() + 40ms;
            windows.due = due;
            day.store.replace(u"account"_s, { meeting(i, due + 5min) });
            settle(60ms);
        }
    }
    isOver = true;
    if (windows.lateness.size() < alerts / 2)
        return state.SkipWithError("the alerts did not come");
    report(state, windows.lateness);
}

} // namespace

} // namespace kestrel

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QLoggingCategory::setFilterRules(u"*.info=false"_s);
    QTranslator texts;
    if (texts.load(u":/i18n/kestrel_en"_s))
        QCoreApplication::installTranslator(&texts);
    benchmark::Initialize(&argc, argv);

    std::vector<kestrel::Budget> budgets;
    const auto add = [&](kestrel::Budget budget, auto work, auto... argument) {
        benchmark::RegisterBenchmark(budget.benchmark.c_str(), work, argument...)->Iterations(1);
        budgets.push_back(std::move(budget));
    };
    using enum kestrel::Showing;
    add({ "popover: click to first frame, first time", 60 }, kestrel::benchmarkPopover, First);
    add({ "popover: click to first frame, later", 16 }, kestrel::benchmarkPopover, Later);
    add({ "card: present to first frame, first time", 100 }, kestrel::benchmarkCards, First);
    add({ "card: present to first frame, later", 20 }, kestrel::benchmarkCards, Later);
    add({ "settings: show to first frame, first time", 150 }, kestrel::benchmarkSettings, First);
    add({ "settings: show to first frame, later", 150 }, kestrel::benchmarkSettings, Later);
    add({ "60 cards re-stacked: longest gap", 33 }, kestrel::benchmarkRestacking);
    add({ "alert lateness, all cores loaded", 5, {}, 1, true }, kestrel::benchmarkLateness);

    kestrel::BudgetTable table("ms", budgets);
    return table.run();
}
