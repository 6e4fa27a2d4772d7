#include "app/BrowserText.h"
#include "app/AgendaText.h"
#include <QJsonArray>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QString nameOf(const QString &name, Packaging packaging)
{
    switch (packaging) {
    case Packaging::Native:
        return name;
    case Packaging::Flatpak:
        return name + u" (Flatpak)"_s;
    case Packaging::Snap:
        return name + u" (Snap)"_s;
    }
    std::unreachable();
}

constexpr auto sandboxed = "runs in a sandbox, where it cannot start Kestrel's relay"_L1;

QString manifestText(HostManifest manifest)
{
    switch (manifest) {
    case HostManifest::Current:
        return u"registered"_s;
    case HostManifest::Missing:
        return u"not registered; run: kestrel browser install"_s;
    case HostManifest::Different:
        return u"registered differently, by another Kestrel perhaps; run: kestrel browser install"_s;
    case HostManifest::Impossible:
        return sandboxed;
    }
    std::unreachable();
}

QString profileText(const BrowserProfile &profile)
{
    if (!profile.hasExtension)
        return u"the extension is missing"_s;
    if (!profile.isEnabled)
        return u"the extension is turned off"_s;
    return profile.allowsScripts ? u"ready"_s : u"\"Allow User Scripts\" is off"_s;
}

QString relayText(const BrowserRelay &relay)
{
    if (relay.route == "devtools"_L1)
        return u"Kestrel's own profile"_s;
    if (!relay.allowsScripts)
        return u"the extension does not answer"_s;
    return *relay.allowsScripts
        ? u"extension %1"_s.arg(terminalText(relay.revision))
        : u"extension %1, \"Allow User Scripts\" is off"_s.arg(terminalText(relay.revision));
}

QLatin1StringView keyOf(Packaging packaging)
{
    return packaging == Packaging::Native ? "native"_L1
        : packaging == Packaging::Flatpak ? "flatpak"_L1
                                          : "snap"_L1;
}

QLatin1StringView keyOf(HostManifest manifest)
{
    switch (manifest) {
    case HostManifest::Missing:
        return "missing"_L1;
    case HostManifest::Different:
        return "different"_L1;
    case HostManifest::Current:
        return "current"_L1;
    case HostManifest::Impossible:
        return "impossible"_L1;
    }
    std::unreachable();
}

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue::Null : QJsonValue(text);
}

QJsonArray toJson(const QList<BrowserRelay> &relays)
{
    QJsonArray all;
    for (const BrowserRelay &relay : relays) {
        all.append(QJsonObject {
            { u"browserPid"_s, relay.browserProcess },
            { u"route"_s, relay.route },
            { u"browser"_s, relay.browser },
            { u"userDataDir"_s, textOrNull(relay.userDataDir) },
            { u"revision"_s, textOrNull(relay.revision) },
            { u"userScripts"_s, relay.allowsScripts ? QJsonValue(*relay.allowsScripts) : QJsonValue::Null },
        });
    }
    return all;
}

} // namespace

QString installationText(const QList<BrowserInstallation> &browsers, const QString &extension)
{
    QString text;
    bool isAnyReady = false;
    for (const BrowserInstallation &browser : browsers) {
        const QString name = nameOf(browser.name, browser.packaging);
        if (browser.packaging != Packaging::Native) {
            text += u"%1: %2.\n"_s.arg(name, sandboxed);
        } else if (!browser.error.isEmpty()) {
            text += u"%1: %2: %3\n"_s.arg(name, browser.manifestFile, browser.error);
        } else {
            text += u"%1: ready for the extension.\n"_s.arg(name);
            isAnyReady = true;
        }
    }
    if (browsers.isEmpty())
        text += u"There is no browser of the Chromium family here (Google Chrome, Chromium, Brave, Microsoft "
                "Edge).\n"_s;
    if (!isAnyReady)
        return text;
    return text
        + u"\nTwo steps are left, in each profile that you join calls with:\n"
          "  1. Open chrome://extensions, turn on \"Developer mode\", press \"Load unpacked\" and choose\n"
          "     %1\n"
          "     (a hidden folder: Ctrl+L in the dialog lets you paste its path)\n"
          "  2. Press \"Details\" under Kestrel, and turn on \"Allow User Scripts\".\n"
          "See what is still missing with: kestrel browser status\n"_s.arg(extension);
}

QString reportText(const BrowserReport &report)
{
    QString text = u"Extension: %1\n"_s.arg(report.extension);
    if (report.installedRevision.isEmpty())
        text += u"  not there yet; run: kestrel browser install\n"_s;
    else if (report.installedRevision == report.shippedRevision)
        text += u"  %1\n"_s.arg(report.installedRevision);
    else
        text += u"  %1, which is another one than this Kestrel's; run: kestrel browser install\n"_s.arg(
            terminalText(report.installedRevision));
    if (report.browsers.isEmpty())
        text += u"\nThere is no browser of the Chromium family here.\n"_s;
    for (const BrowserCondition &browser : report.browsers) {
        text += u"\n%1\n  relay: %2\n"_s.arg(nameOf(browser.name, browser.packaging),
                                             manifestText(browser.manifest));
        if (browser.packaging != Packaging::Native)
            continue;
        for (const BrowserProfile &profile : browser.profiles)
            text += u"  profile %1 (%2): %3\n"_s.arg(terminalText(profile.name), terminalText(profile.folder),
                                                     profileText(profile));
        if (browser.relays.isEmpty())
            text += u"  not connected\n"_s;
        for (const BrowserRelay &relay : browser.relays)
            text += u"  connected: %1\n"_s.arg(relayText(relay));
    }
    if (!report.otherRelays.isEmpty())
        text += u"\nOther browsers\n"_s;
    for (const BrowserRelay &relay : report.otherRelays)
        text += u"  %1: %2\n"_s.arg(
            terminalText(relay.userDataDir.isEmpty() ? relay.browser : relay.userDataDir), relayText(relay));
    return text;
}

QJsonObject toJson(const BrowserReport &report)
{
    QJsonArray browsers;
    for (const BrowserCondition &browser : report.browsers) {
        QJsonArray profiles;
        for (const BrowserProfile &profile : browser.profiles) {
            profiles.append(QJsonObject { { u"folder"_s, profile.folder },
                                          { u"name"_s, profile.name },
                                          { u"hasExtension"_s, profile.hasExtension },
                                          { u"isEnabled"_s, profile.isEnabled },
                                          { u"userScripts"_s, profile.allowsScripts } });
        }
        browsers.append(QJsonObject { { u"name"_s, browser.name },
                                      { u"packaging"_s, keyOf(browser.packaging) },
                                      { u"dataFolder"_s, browser.dataFolder },
                                      { u"manifest"_s, keyOf(browser.manifest) },
                                      { u"profiles"_s, profiles },
                                      { u"connections"_s, toJson(browser.relays) } });
    }
    return { { u"extension"_s, report.extension },
             { u"installedRevision"_s, textOrNull(report.installedRevision) },
             { u"shippedRevision"_s, textOrNull(report.shippedRevision) },
             { u"browsers"_s, browsers },
             { u"otherConnections"_s, toJson(report.otherRelays) } };
}

} // namespace kestrel
