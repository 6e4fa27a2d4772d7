#include "soak/Figures.h"
#include "soak/TimeLapse.h"
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <malloc.h>
#include <span>

#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#endif

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// What is remembered of each alert as long as the process runs.
constexpr qint64 bytesPerAlert = 50;

qint64 entries(const QString &folder)
{
    return static_cast<qint64>(
        QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot).size());
}

qint64 busMatches()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus.Debug.Stats"_s, u"GetConnectionStats"_s);
    question << bus.baseService();
    const QVariantMap stats = qdbus_cast<QVariantMap>(bus.call(question).arguments().value(0));
    return stats.value(u"MatchRules"_s).toLongLong();
}

#if !__has_feature(address_sanitizer)
qint64 privateMemory()
{
    QFile file(u"/proc/self/smaps_rollup"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Private_Dirty:"))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    return 0;
}
#endif

} // namespace

Figures Figures::now()
{
    Figures figures;
    figures.objects = TimeLapse::objects();
    figures.timers = TimeLapse::timers();
    figures.descriptors = entries(u"/proc/self/fd"_s);
    figures.threads = entries(u"/proc/self/task"_s);
    figures.busMatches = kestrel::busMatches();
#if __has_feature(address_sanitizer)
    figures.heap = static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#else
    malloc_trim(0);
    const struct mallinfo2 use = mallinfo2();
    figures.heap = static_cast<qint64>(use.uordblks + use.hblkhd);
    figures.privateMemory = kestrel::privateMemory();
#endif
    return figures;
}

QList<Trend> trends(const std::vector<Figures> &samples)
{
    const std::size_t quarter = samples.size() / 4;
    const std::span all(samples);
    const auto second = all.subspan(quarter, quarter);
    const auto last = all.last(quarter);
    const qint64 traces = (last.back().alerts - second.front().alerts) * bytesPerAlert;
    // less than one more every other time is what windows keep or not of what they drew last
    const auto drawn = static_cast<qint64>(quarter);
    const auto trend = [&](const QString &name, qint64 Figures::*figure, qint64 allowed) {
        return Trend { name, std::ranges::max(second, {}, figure).*figure,
                       std::ranges::min(last, {}, figure).*figure, allowed };
    };
    return { trend(u"objects"_s, &Figures::objects, drawn),
             trend(u"timers"_s, &Figures::timers, 0),
             trend(u"descriptors"_s, &Figures::descriptors, 0),
             trend(u"threads"_s, &Figures::threads, 0),
             trend(u"bus matches"_s, &Figures::busMatches, 0),
             trend(u"heap"_s, &Figures::heap, 256LL * 1024 + traces),
             trend(u"private memory"_s, &Figures::privateMemory, 2LL * 1024 * 1024 + traces) };
}

} // namespace kestrel
