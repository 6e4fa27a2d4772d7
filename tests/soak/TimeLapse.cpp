#include "soak/TimeLapse.h"
#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QMutex>
#include <QSet>
#include <QThread>
#include <QTimerEvent>
#include <vector>

// What debuggers of Qt programs hook into (qhooks_p.h); its layout has a version, which is checked.
extern Q_DECL_IMPORT quintptr qtHookData[];

namespace kestrel {

namespace {

enum HookIndex { hookVersion = 0, hookSize = 1, addQObject = 3, removeQObject = 4 };

QMutex guard; // objects are made in Qt's own threads too
QSet<QObject *> *living = nullptr;

void add(QObject *object)
{
    const QMutexLocker lock(&guard);
    if (living)
        living->insert(object);
}

void remove(QObject *object)
{
    const QMutexLocker lock(&guard);
    if (living)
        living->remove(object);
}

struct Registered
{
    QObject *object;
    int id;
    std::chrono::milliseconds interval;
};

std::vector<Registered> registered()
{
    const QMutexLocker lock(&guard); // nobody is freed meanwhile
    std::vector<Registered> all;
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    for (QObject *object : std::as_const(*living)) {
        if (object->thread() != QThread::currentThread())
            continue;
        for (const auto &timer : dispatcher->registeredTimers(object))
            all.push_back({ object, timer.timerId, std::chrono::milliseconds(timer.interval) });
    }
    return all;
}

bool isRunning(const Registered &timer)
{
    {
        const QMutexLocker lock(&guard);
        if (!living->contains(timer.object))
            return false;
    }
    for (const auto &other : QAbstractEventDispatcher::instance()->registeredTimers(timer.object)) {
        if (other.timerId == timer.id)
            return true;
    }
    return false;
}

} // namespace

TimeLapse::TimeLapse()
{
    if (qtHookData[hookVersion] < 1 || qtHookData[hookSize] <= removeQObject)
        qFatal("This Qt has other hooks: objects cannot be counted");
    living = new QSet<QObject *>;
    qtHookData[addQObject] = reinterpret_cast<quintptr>(&add);
    qtHookData[removeQObject] = reinterpret_cast<quintptr>(&remove);
}

TimeLapse::~TimeLapse()
{
    qtHookData[addQObject] = 0;
    qtHookData[removeQObject] = 0;
    const QMutexLocker lock(&guard);
    delete std::exchange(living, nullptr);
}

qsizetype TimeLapse::objects()
{
    const QMutexLocker lock(&guard);
    return living->size();
}

QHash<QByteArray, int> TimeLapse::objectsByClass()
{
    const QMutexLocker lock(&guard);
    QHash<QByteArray, int> counts;
    for (const QObject *object : std::as_const(*living))
        ++counts[object->metaObject()->className()];
    return counts;
}

qsizetype TimeLapse::timers()
{
    return static_cast<qsizetype>(registered().size());
}

void TimeLapse::pass(std::chrono::milliseconds span)
{
    QHash<Timer, std::chrono::milliseconds> waited;
    std::vector<Registered> due;
    for (const Registered &timer : registered()) {
        const auto soFar = m_waited.value({ timer.object, timer.id }) + span;
        if (soFar >= timer.interval)
            due.push_back(timer);
        else
            waited.insert({ timer.object, timer.id }, soFar);
    }
    m_waited = std::move(waited);
    for (const Registered &timer : due) {
        if (!isRunning(timer))
            continue;
        QTimerEvent event(timer.id);
        QCoreApplication::sendEvent(timer.object, &event);
    }
}

} // namespace kestrel
