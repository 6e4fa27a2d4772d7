#include "soak/BusyPerson.h"
#include "soak/Figures.h"
#include "soak/TimeLapse.h"
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QThread>
#include <QTimer>
#include <cstdio>
#include <fcntl.h>
#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

enum ExitCode { Clean = 0, Grows = 1, Useless = 2 };

const QStringList leaks { u"object"_s, u"timer"_s, u"descriptor"_s, u"thread"_s, u"match"_s, u"memory"_s };

/// One of what the figures must not miss; never given back.
void leak(const QString &kind)
{
    static QObject roots;
    if (kind == "object"_L1) {
        new QObject(&roots);
    } else if (kind == "timer"_L1) {
        roots.startTimer(24h);
    } else if (kind == "descriptor"_L1) {
        std::ignore = open("/dev/null", O_RDONLY | O_CLOEXEC);
    } else if (kind == "thread"_L1) {
        auto *thread = new QThread;
        thread->start();
    } else if (kind == "match"_L1) {
        static int number = 0;
        QDBusConnection::sessionBus().connect({}, u"/leak"_s, u"app.kestrel.Soak"_s,
                                              u"Leak%1"_s.arg(++number), &roots, SLOT(deleteLater()));
    } else if (kind == "memory"_L1) {
        static std::vector<QByteArray> kept;
        kept.emplace_back(1024 * 1024, 'x');
    }
}

void printLine(int period, const Figures &figures, const BusyPerson &person, qint64 seconds)
{
    std::printf(
        "%4d %7lld s %8.2f d %8lld %7lld %6lld %7lld %7lld %9.2f %9.2f %9lld %9lld\n", period, seconds,
        static_cast<double>(person.deeds().minutes) / 1440, figures.objects, figures.timers,
        figures.descriptors, figures.threads, figures.busMatches, static_cast<double>(figures.heap) / 1048576,
        static_cast<double>(figures.privateMemory) / 1048576, person.deeds().alerts, person.deeds().frames);
    std::fflush(stdout);
}

void printDeeds(const BusyPerson &person)
{
    const BusyPerson::Deeds &deeds = person.deeds();
    std::printf(
        "\n%.1f simulated days: %lld alerts (%lld joined, %lld dismissed, the others by themselves), "
        "%d requests to Google, %lld sign-ins, %lld sign-outs,\n%lld scripts in the call, %lld actions, "
        "%lld bridge clients, %lld panels, %lld languages, %lld agendas, %lld settings, %lld doctors, %lld "
        "frames\n\n",
        static_cast<double>(deeds.minutes) / 1440, deeds.alerts, deeds.joined, deeds.dismissed,
        person.requests(), deeds.signIns, deeds.signOuts, deeds.polls, deeds.commands, deeds.clients,
        deeds.panels, deeds.languages, deeds.agendas, deeds.settings, deeds.examinations, deeds.frames);
}

/// Every figure's word, and whether the run is clean.
bool printVerdict(const std::vector<Figures> &samples)
{
    bool isClean = true;
    for (const Trend &trend : trends(samples)) {
        std::printf("%-16s %12lld -> %12lld  allowed %+10lld  %s\n", qPrintable(trend.name), trend.before,
                    trend.after, trend.allowed, trend.isGrowing() ? "GROWS" : "steady");
        isClean = isClean && !trend.isGrowing();
    }
    std::printf("\n%s\n", isClean ? "Clean: nothing grows." : "NOT CLEAN: see what grows.");
    return isClean;
}

/// Which classes there are more of than after the second quarter.
void printClasses(const QHash<QByteArray, int> &before)
{
    const auto now = TimeLapse::objectsByClass();
    for (auto it = now.begin(); it != now.end(); ++it) {
        if (it.value() != before.value(it.key()))
            std::printf("  %s: %d -> %d\n", it.key().constData(), before.value(it.key()), it.value());
    }
}

int soak(TimeLapse &lapse, const QCommandLineParser &options)
{
    const double hours = options.value(u"hours"_s).toDouble();
    const int periods = options.value(u"periods"_s).toInt();
    const int minutes = options.value(u"minutes"_s).toInt();
    const int meetings = options.value(u"meetings"_s).toInt();
    const QStringList wanted = options.values(u"leak"_s);
    const bool isUnknown =
        std::ranges::any_of(wanted, [](const QString &kind) { return !leaks.contains(kind); });
    if ((hours <= 0 && periods < fewestSamples) || minutes < 1 || meetings < 1 || isUnknown) {
        std::fprintf(stderr,
                     "kestrel-soak: --hours above 0 or --periods of at least %lld; --leak one of %s\n",
                     qint64(fewestSamples), qPrintable(leaks.join(u' ')));
        return Useless;
    }

    std::printf(
        "  no    real     simulated  objects  timers   fds threads matches  heap MB   priv MB    alerts"
        "    frames\n");
    BusyPerson person(lapse, meetings);
    std::vector<Figures> samples;
    QHash<QByteArray, int> classes;
    QElapsedTimer timer;
    timer.start();
    const auto goesOn = [&] {
        if (periods > 0)
            return static_cast<int>(samples.size()) < periods;
        return timer.elapsed() < static_cast<qint64>(hours * 3'600'000);
    };
    while (goesOn()) {
        person.keepBusy(minutes);
        for (const QString &kind : wanted)
            leak(kind);
        samples.push_back(person.rest());
        if (!person.trouble().isEmpty()) {
            std::fprintf(stderr, "kestrel-soak: %s\n", qPrintable(person.trouble()));
            return Useless;
        }
        printLine(static_cast<int>(samples.size()), samples.back(), person, timer.elapsed() / 1000);
        if (samples.size() == 4)
            classes = TimeLapse::objectsByClass();
    }
    printDeeds(person);
    if (samples.size() < fewestSamples) {
        std::fprintf(stderr, "kestrel-soak: only %zu periods, too few for a verdict\n", samples.size());
        return Useless;
    }
    const bool isClean = printVerdict(samples);
    if (!isClean)
        printClasses(classes);
    return isClean ? Clean : Grows;
}

} // namespace

} // namespace kestrel

int main(int argc, char **argv)
{
    kestrel::TimeLapse lapse;
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QLoggingCategory::setFilterRules(
        u"*.info=false\ncalendar.critical=false\napp.critical=false\nbridge=false"_s);
    QCommandLineParser options;
    options.setApplicationDescription(
        u"Runs all of Kestrel at high speed and tells whether anything grows."_s);
    options.addHelpOption();
    options.addOptions({
        { u"hours"_s, u"For so long by the clock on the wall."_s, u"hours"_s, u"0"_s },
        { u"periods"_s, u"For so many periods instead."_s, u"number"_s, u"0"_s },
        { u"minutes"_s, u"Simulated minutes of a period."_s, u"minutes"_s, u"480"_s },
        { u"meetings"_s, u"Meetings a simulated day."_s, u"number"_s, u"1000"_s },
        { u"leak"_s, u"Leaks one of this kind a period, which must be found. May be repeated."_s, u"kind"_s },
    });
    options.process(application);
    return kestrel::soak(lapse, options);
}
