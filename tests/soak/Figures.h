#pragma once
#include <QList>
#include <QString>
#include <vector>

namespace kestrel {

/// What a process that leaks has more of from day to day.
struct Figures
{
    qint64 objects = 0; ///< living QObjects of all threads
    qint64 timers = 0; ///< running ones of the main thread
    qint64 descriptors = 0;
    qint64 threads = 0;
    qint64 busMatches = 0; ///< match rules that the session bus keeps for this process
    qint64 heap = 0; ///< bytes that were allocated and not freed
    qint64 privateMemory = 0; ///< bytes of its own that it has written to; 0 where a sanitizer blurs it
    qint64 alerts = 0; ///< so far: each leaves a trace on purpose

    [[nodiscard]] static Figures now();
};

/// A figure over the run.
struct Trend
{
    QString name;
    qint64 before = 0; ///< the largest of the second quarter; the first is for warming up
    qint64 after = 0; ///< the smallest of the last quarter
    qint64 allowed = 0; ///< how much larger it may be

    [[nodiscard]] bool isGrowing() const { return after - before > allowed; }
};

constexpr qsizetype fewestSamples = 8;

/// Of samples that were all taken in the same state of the program. At least fewestSamples.
[[nodiscard]] QList<Trend> trends(const std::vector<Figures> &samples);

} // namespace kestrel
