#include "command/CommandLine.h"
#include "hotkeys/HotkeyAction.h"
#include <QCommandLineParser>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

struct Verb
{
    QLatin1StringView name;
    QLatin1StringView synopsis;
    QLatin1StringView summary;
    QLatin1StringView details;
    int fewestArguments;
    int mostArguments;
    QLatin1StringView options; ///< separated by spaces
    bool isForRunning = false; ///< nobody but a running Kestrel can carry it out
};

constexpr std::array verbs {
    Verb { "agenda"_L1, "agenda [--json]"_L1, "what is on now, next and later"_L1,
           "Asks the running Kestrel for the meetings that it knows, without reading the calendars again.\n"
           "--json prints an array of meetings with all their fields, by start."_L1,
           0, 0, "json"_L1, true },
    Verb {
        "status"_L1, "status [--json | --waybar] [--follow]"_L1,
        "the next meeting, the accounts, the last refresh"_L1,
        "Asks the running Kestrel how it is doing.\n"
        "--waybar prints what a custom module of waybar reads.\n"
        "--follow prints a line now and at every change, for panels: the countdown and the meeting, or with "
        "--json\nor --waybar an object a line. It goes on when Kestrel ends and starts again."_L1,
        0, 0, "json waybar follow"_L1, true },
    Verb { "refresh"_L1, "refresh"_L1, "read the calendars now"_L1,
           "Has the running Kestrel read all calendars, and waits until it has."_L1, 0, 0, ""_L1, true },
    Verb { "join"_L1, "join"_L1, "join the meeting that is on or about to start"_L1,
           "Opens the link of the meeting that starts within the lead time, else of one in progress, else of "
           "the "
           "next.\nWith none of them the agenda is shown, and the verb fails."_L1,
           0, 0, ""_L1, true },
    Verb { "dismiss"_L1, "dismiss"_L1, "close all alert cards"_L1,
           "Closes every alert card on the screen."_L1, 0, 0, ""_L1, true },
    Verb { "show"_L1, "show"_L1, "open the agenda"_L1,
           "Opens the agenda on the screen of the running Kestrel."_L1, 0, 0, ""_L1, true },
    Verb { "settings"_L1, "settings"_L1, "open the settings"_L1,
           "Opens the settings window on the screen of the running Kestrel."_L1, 0, 0, ""_L1, true },
    Verb {
        "action"_L1, "action NAME"_L1, "do what a global shortcut does"_L1,
        "For compositors that bind keys themselves. NAME is join, meetMute, meetVideo, meetHand, meetFocus,\n"
        "meetShareScreen, meetLeave, meetReactThumbs, meetReactHeart, meetReactParty, meetReactClap,\n"
        "meetReactLaugh, meetReactSurprise, meetReactSad, meetReactThinking, meetReactThumbsDown or\n"
        "meetReactLove. Without a Meet tab the agenda is shown."_L1,
        1, 1, ""_L1, true },
    Verb { "doctor"_L1, "doctor [--json] [--test-alert]"_L1, "will the next alert fire, and be seen?"_L1,
           "Has the running Kestrel look at everything that an alert needs, and says what stands in its way. "
           "Nothing in it\n"
           "is private: it may be pasted into a bug report. --test-alert shows an alert for a few seconds.\n"
           "Exit code 0: nothing stands in the way; 1: something does; 3: Kestrel is not running."_L1,
           0, 0, "json test-alert"_L1, true },
    Verb {
        "accounts"_L1, "accounts add | list [--json] | sign-in ACCOUNT | remove ACCOUNT"_L1,
        "sign in, list, sign out"_L1,
        "add opens Google's sign-in page in the browser and waits for it, two minutes at most.\n"
        "list shows every account with its identifier.\n"
        "sign-in signs an account in again whose sign-in has ended; its choices stay.\n"
        "remove signs an account out, revokes its tokens and forgets it.\n"
        "ACCOUNT is an account's identifier or e-mail address.\n"
        "Works with a running Kestrel and without one. KESTREL_BROWSER names a program that gets the page's "
        "address\n"
        "in place of the default browser."_L1,
        1, 2, "json"_L1 },
    Verb { "browser"_L1, "browser install | status [--json]"_L1, "Kestrel's extension in your browsers"_L1,
           "install copies the extension, makes every Chromium-family browser ready for it, and says what is "
           "left to do.\n"
           "status shows for each browser and profile what is connected and what is missing.\n"
           "Neither needs a running Kestrel."_L1,
           1, 1, "json"_L1 },
    Verb { "meetings"_L1, "meetings FILE [--json] [--now INSTANT] [--account ID] [--calendar ID]"_L1,
           "what Kestrel makes of a saved calendar answer"_L1,
           "Decodes FILE, a saved answer of the calendar API's events list (- is standard input), and prints "
           "its\n"
           "meetings in the order of the file. With --now (2026-03-01T09:30:00Z) they pass through the store "
           "of\n"
           "meetings at that time first, which sorts them and drops what ended an hour before.\n"
           "The account defaults to \"account\", the calendar to \"primary\". Needs no running Kestrel."_L1,
           1, 1, "json now account calendar"_L1 },
};

const Verb *findVerb(const QString &name)
{
    const auto found =
        std::find_if(verbs.begin(), verbs.end(), [&](const Verb &verb) { return verb.name == name; });
    return found == verbs.end() ? nullptr : &*found;
}

std::expected<void, QString> checkVerb(const CommandLine &line, const QStringList &verbOptions)
{
    const Verb *verb = findVerb(line.verb);
    if (!verb && !line.verb.isEmpty())
        return std::unexpected(u"There is no verb \"%1\". kestrel --help lists them."_s.arg(line.verb));
    const QStringList allowed = verb ? QString(verb->options).split(u' ') : QStringList();
    for (const QString &option : verbOptions) {
        if (!allowed.contains(option))
            return std::unexpected(
                u"--%1 does not go with \"kestrel %2\"."_s.arg(option, line.verb).simplified());
    }
    if (!verb || line.help)
        return {};
    const auto count = line.arguments.size();
    const bool wantsAccount = line.verb == "accounts"_L1
        && (line.arguments.value(0) == "remove"_L1 || line.arguments.value(0) == "sign-in"_L1);
    if (count < verb->fewestArguments || count > verb->mostArguments || (wantsAccount && count != 2))
        return std::unexpected(u"Usage: kestrel %1"_s.arg(verb->synopsis));
    if (line.verb == "action"_L1 && !hotkeyActionFromRaw(line.arguments[0]))
        return std::unexpected(
            u"There is no action \"%1\". kestrel action --help lists them."_s.arg(line.arguments[0]));
    if (line.verb == "accounts"_L1
        && (!QStringList { u"add"_s, u"list"_s, u"sign-in"_s, u"remove"_s }.contains(line.arguments[0])
            || (!wantsAccount && count != 1))) {
        return std::unexpected(u"Usage: kestrel %1"_s.arg(verb->synopsis));
    }
    const bool isBrowserStatus = line.arguments.value(0) == "status"_L1;
    if (line.verb == "browser"_L1
        && ((!isBrowserStatus && line.arguments[0] != "install"_L1) || (line.json && !isBrowserStatus))) {
        return std::unexpected(u"Usage: kestrel %1"_s.arg(verb->synopsis));
    }
    return {};
}

} // namespace

std::expected<CommandLine, QString> CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOptions({
        { { u"h"_s, u"help"_s }, {} },
        { { u"v"_s, u"version"_s }, {} },
        { u"data"_s, {}, u"DIR"_s },
        { u"google-base"_s, {}, u"URL"_s },
        { u"secret-store"_s, {}, u"KIND"_s },
        { u"json"_s, {} },
        { u"waybar"_s, {} },
        { u"follow"_s, {} },
        { u"test-alert"_s, {} },
        { u"kestrel-just-installed"_s, {} },
        { u"now"_s, {}, u"INSTANT"_s },
        { u"account"_s, {}, u"ID"_s },
        { u"calendar"_s, {}, u"ID"_s },
    });
    if (!parser.parse(arguments))
        return std::unexpected(parser.errorText());

    CommandLine line;
    QStringList positional = parser.positionalArguments();
    if (!positional.isEmpty())
        line.verb = positional.takeFirst();
    line.arguments = positional;
    line.json = parser.isSet(u"json"_s);
    line.waybar = parser.isSet(u"waybar"_s);
    line.follow = parser.isSet(u"follow"_s);
    if (line.json && line.waybar)
        return std::unexpected(u"--json and --waybar exclude each other."_s);
    line.testAlert = parser.isSet(u"test-alert"_s);
    line.help = parser.isSet(u"help"_s);
    line.version = parser.isSet(u"version"_s);
    line.justInstalled = parser.isSet(u"kestrel-just-installed"_s);
    if (parser.isSet(u"now"_s))
        line.now = parser.value(u"now"_s);
    if (parser.isSet(u"account"_s))
        line.account = parser.value(u"account"_s);
    if (parser.isSet(u"calendar"_s))
        line.calendar = parser.value(u"calendar"_s);
    line.dataFolder =
        parser.isSet(u"data"_s) ? parser.value(u"data"_s) : qEnvironmentVariable("KESTREL_DATA");
    line.googleBase = parser.isSet(u"google-base"_s) ? parser.value(u"google-base"_s)
                                                     : qEnvironmentVariable("KESTREL_GOOGLE_BASE");
    line.secretStore = parser.value(u"secret-store"_s);
    if (parser.isSet(u"secret-store"_s) && line.secretStore != "service"_L1 && line.secretStore != "file"_L1)
        return std::unexpected(u"--secret-store is \"service\" or \"file\"."_s);

    QStringList verbOptions;
    for (const QString &option :
         { u"json"_s, u"waybar"_s, u"follow"_s, u"test-alert"_s, u"now"_s, u"account"_s, u"calendar"_s }) {
        if (parser.isSet(option))
            verbOptions.append(option);
    }
    if (const auto checked = checkVerb(line, verbOptions); !checked)
        return std::unexpected(checked.error());
    return line;
}

bool CommandLine::isForRunningKestrel() const
{
    const Verb *row = findVerb(verb);
    return row && row->isForRunning;
}

QStringList CommandLine::forHandOver() const
{
    QStringList all { verb };
    all += arguments;
    if (json)
        all += u"--json"_s;
    if (waybar)
        all += u"--waybar"_s;
    if (follow)
        all += u"--follow"_s;
    if (testAlert)
        all += u"--test-alert"_s;
    return all;
}

QString helpPage(const QString &name)
{
    if (const Verb *verb = findVerb(name))
        return u"Usage: kestrel %1\n\n%2\n"_s.arg(verb->synopsis, verb->details);

    QString page = u"Kestrel, the meeting assistant in the status bar.\n\n"
                   "Usage: kestrel [OPTION…]            run Kestrel (once per session; a second start says "
                   "so and ends)\n"
                   "       kestrel VERB [OPTION…]\n\nVerbs:\n"_s;
    for (const Verb &verb : verbs)
        page += u"  %1%2\n"_s.arg(QString(verb.name).leftJustified(12), verb.summary);
    page += u"\nOptions:\n"
            "  --data DIR            keep files, bus name and secrets of this Kestrel apart, in DIR "
            "(KESTREL_DATA)\n"
            "  --google-base URL     talk to a test server on this machine instead of Google "
            "(KESTREL_GOOGLE_BASE);\n"
            "                        needs a --data folder that was created for it\n"
            "  --secret-store KIND   \"service\": the desktop's keyring (default); \"file\": a file that "
            "only you can\n"
            "                        read. The preference secretStore=file makes that last\n"
            "  --help, --version     also behind a verb\n\n"
            "Exit codes: 0 done, 1 failed (stderr says why), 2 wrong call, 3 Kestrel is not running.\n"_s;
    return page;
}

} // namespace kestrel
