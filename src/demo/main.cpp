#include "base/StartTask.h"
#include "demo/Ending.h"
#include "demo/SampleGoogle.h"
#include "demo/ScriptedConsent.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace kestrel;
using namespace kestrel::demo;

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

int complain(const QString &text, int code)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    return code;
}

QCoro::Task<void> pressAndExit(ScriptedConsent consent)
{
    const auto result = co_await press(std::move(consent));
    QCoreApplication::exit(result ? 0 : complain(result.error(), failed));
}

/// The page's address is the last argument; as `kestrel-sample-consent` it is the only one.
int runConsent(QStringList arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Presses Allow on a sign-in page of the sample Google."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"URL"_s, u"the sign-in page"_s);
    parser.addOption({ u"account"_s,
                       u"The account to choose; without it KESTREL_SAMPLE_ACCOUNT, or the first."_s,
                       u"EMAIL"_s, qEnvironmentVariable("KESTREL_SAMPLE_ACCOUNT") });
    parser.addOption({ u"cancel"_s, u"Press Cancel instead."_s });
    parser.process(arguments);
    if (parser.positionalArguments().size() != 1)
        return complain(u"One URL is needed."_s, badUsage);
    const ScriptedConsent consent { .page = QUrl(parser.positionalArguments().first(), QUrl::StrictMode),
                                    .account = parser.value(u"account"_s),
                                    .isCancelled = parser.isSet(u"cancel"_s) };
    QMetaObject::invokeMethod(
        qApp, [consent] { startTask("press consent", pressAndExit(consent)); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

/// The option's value, or nothing after a complaint.
std::optional<int> number(const QCommandLineParser &parser, const QString &option, int least, int most)
{
    bool isNumber = false;
    const int value = parser.value(option).toInt(&isNumber);
    if (isNumber && value >= least && value <= most)
        return value;
    complain(u"--%1 needs a number from %2 to %3."_s.arg(option).arg(least).arg(most), badUsage);
    return {};
}

int runServer(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Plays Google for Kestrel's demo, tests and benchmarks, on 127.0.0.1. Prints its address when it is "
        u"ready.\n"
        "\"press-consent URL\" as the first arguments presses Allow on its sign-in page instead."_s);
    parser.addHelpOption();
    parser.addOptions({
        { u"port"_s, u"Listen there; 0 takes a free port."_s, u"PORT"_s, u"0"_s },
        { u"now"_s, u"Stand still at this instant, for example 2030-01-15T09:00:00Z."_s, u"INSTANT"_s },
        { u"until-stdin-closes"_s, u"End when standard input ends, as it does when the parent dies."_s },
        { u"token-lifetime"_s, u"How long access tokens are good."_s, u"SECONDS"_s, u"3599"_s },
        { u"fault"_s, u"Arm a fault: PATH=KIND[:ARGUMENT][*TIMES]. May be given again."_s, u"FAULT"_s },
        { u"accounts"_s, u"Generate that many accounts instead of the sample ones."_s, u"N"_s, u"1"_s },
        { u"calendars"_s, u"Generate that many calendars an account."_s, u"N"_s, u"1"_s },
        { u"events"_s, u"Generate that many events a calendar."_s, u"N"_s, u"250"_s },
        { u"accept-sample-tokens"_s,
          u"Accept the refresh tokens sample-refresh-0, sample-refresh-1 and so on."_s },
    });
    parser.process(arguments);
    if (!parser.positionalArguments().isEmpty())
        return complain(u"Unknown argument: "_s + parser.positionalArguments().first(), badUsage);

    SystemClock systemClock;
    FixedClock fixedClock { systemClock.now() };
    if (parser.isSet(u"now"_s)) {
        const auto now = parseInternetDateTime(parser.value(u"now"_s));
        if (!now)
            return complain(u"--now needs an instant like 2030-01-15T09:00:00Z."_s, badUsage);
        fixedClock.setNow(*now);
    }
    const Clock &clock = parser.isSet(u"now"_s) ? static_cast<const Clock &>(fixedClock) : systemClock;

    SampleGoogle::Options options { .anchor = SampleGoogle::anchorFor(clock.now()),
                                    .acceptsSampleTokens = parser.isSet(u"accept-sample-tokens"_s) };
    const auto port = number(parser, u"port"_s, 0, 65535);
    const auto lifetime = number(parser, u"token-lifetime"_s, 1, 1'000'000);
    const auto accounts = number(parser, u"accounts"_s, 1, 1000);
    const auto calendars = number(parser, u"calendars"_s, 1, 1000);
    const auto events = number(parser, u"events"_s, 0, 100'000);
    if (!port || !lifetime || !accounts || !calendars || !events)
        return badUsage;
    options.accessTokenLifetime = std::chrono::seconds(*lifetime);
    if (parser.isSet(u"accounts"_s) || parser.isSet(u"calendars"_s) || parser.isSet(u"events"_s))
        options.load = LoadSize { *accounts, *calendars, *events };

    SampleGoogle google(options, clock);
    for (const QString &text : parser.values(u"fault"_s)) {
        auto fault = Fault::fromCommandLine(text);
        if (!fault)
            return complain(fault.error(), badUsage);
        google.addFault(std::move(*fault));
    }
    if (const auto listening = google.listen(static_cast<quint16>(*port)); !listening)
        return complain(listening.error(), failed);

    endOnSignals();
    if (parser.isSet(u"until-stdin-closes"_s))
        endWithStdin();
    std::printf("%s\n", google.base().toEncoded().constData());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    if (QFileInfo(arguments.first()).fileName() == u"kestrel-sample-consent")
        return runConsent(arguments);
    if (arguments.value(1) == u"press-consent") {
        arguments.removeAt(1);
        return runConsent(arguments);
    }
    return runServer(arguments);
}
