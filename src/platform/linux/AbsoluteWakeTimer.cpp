#include "platform/linux/AbsoluteWakeTimer.h"
#include "base/Log.h"
#include "platform/linux/BusPeer.h"
#include <QDBusConnection>
#include <algorithm>
#include <cerrno>
#include <sys/timerfd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const auto sleepService = u"org.freedesktop.login1"_s;

// a time of zero would disarm the timer
constexpr Instant earliest { std::chrono::milliseconds(1) };
constexpr Instant latest { std::chrono::sys_days(std::chrono::January / 1 / 2200) };

itimerspec absoluteTime(Instant instant)
{
    using namespace std::chrono;
    const auto since = std::clamp(instant, earliest, latest).time_since_epoch();
    const auto whole = floor<seconds>(since);
    itimerspec time {};
    time.it_value.tv_sec = whole.count();
    time.it_value.tv_nsec = nanoseconds(since - whole).count();
    return time;
}

} // namespace

AbsoluteWakeTimer::AbsoluteWakeTimer(QObject *parent)
    : WakeTimer(parent)
    , m_descriptor(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK))
    , m_notifier(m_descriptor, QSocketNotifier::Read)
{
    if (m_descriptor < 0)
        qCCritical(lcAlerts).noquote() << "No timer:" << qt_error_string(errno);
    connect(&m_notifier, &QSocketNotifier::activated, this, &AbsoluteWakeTimer::read);
    set();
    // later, since start-up need not wait for the system bus
    QMetaObject::invokeMethod(this, &AbsoluteWakeTimer::followSleep, Qt::QueuedConnection);
}

AbsoluteWakeTimer::~AbsoluteWakeTimer()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void AbsoluteWakeTimer::arm(Instant due)
{
    m_due = due;
    set();
}

void AbsoluteWakeTimer::cancel()
{
    m_due.reset();
    set();
}

std::optional<Instant> AbsoluteWakeTimer::armedFor() const
{
    using namespace std::chrono;
    itimerspec time {};
    if (!m_due || ::timerfd_gettime(m_descriptor, &time) != 0)
        return {};
    const auto left = seconds(time.it_value.tv_sec) + nanoseconds(time.it_value.tv_nsec);
    if (left == left.zero())
        return {}; // it has expired or was never set
    // the kernel tells what is left; read a moment later it cannot be the instant itself
    const Instant due = round<milliseconds>(system_clock::now() + left);
    return abs(due - *m_due) < 100ms ? *m_due : due;
}

QCoro::Task<bool> AbsoluteWakeTimer::hearsOfSleep()
{
    const auto process = co_await processOf(QDBusConnection::systemBus(), sleepService);
    co_return process.has_value();
}

void AbsoluteWakeTimer::set()
{
    const itimerspec time = absoluteTime(m_due.value_or(latest));
    if (::timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &time, nullptr) == 0)
        return;
    // the clock was set since the last call: the timer is armed all the same, and nothing else will tell
    if (errno == ECANCELED)
        QMetaObject::invokeMethod(this, &WakeTimer::clockJumped, Qt::QueuedConnection);
    else
        qCCritical(lcAlerts).noquote() << "The timer cannot be set:" << qt_error_string(errno);
}

void AbsoluteWakeTimer::read()
{
    quint64 expirations = 0;
    if (::read(m_descriptor, &expirations, sizeof expirations) == sizeof expirations) {
        const bool isDue = m_due.has_value();
        cancel();
        if (isDue)
            Q_EMIT fired();
    } else if (errno == ECANCELED) {
        set();
        Q_EMIT clockJumped();
    }
}

void AbsoluteWakeTimer::followSleep()
{
    // without a system bus this does nothing; the kernel cancels the timer on waking up as well
    QDBusConnection::systemBus().connect(sleepService, u"/org/freedesktop/login1"_s,
                                         u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, this,
                                         SLOT(onPrepareForSleep(bool)));
}

void AbsoluteWakeTimer::onPrepareForSleep(bool goesToSleep)
{
    if (!goesToSleep)
        Q_EMIT clockJumped();
}

} // namespace kestrel
