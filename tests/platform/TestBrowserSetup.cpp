#include "platform/linux/BrowserSetup.h"
#include "support/Files.h"
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <latch>
#include <sys/resource.h>
#include <thread>
#include <vector>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

/// With quotes that are easier on the eye, and that moc can read.
QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

QJsonObject jsonOf(const QString &path)
{
    return QJsonDocument::fromJson(contentOf(path)).object();
}

/// A home with a program for the relay, and the extension that the project ships.
struct Home
{
    QTemporaryDir root;
    BrowserPlaces places { path(u"home"_s),
                           path(u"config"_s),
                           { path(u"applications"_s) },
                           QStringLiteral(SHIPPED_EXTENSION),
                           path(u"data/kestrel/extension"_s),
                           path(u"sockets"_s),
                           path(u"bin/relay"_s) };

    explicit Home(const QStringList &desktopIDs)
    {
        writeProgram(places.relayProgram, "#!/bin/sh\n");
        for (const QString &name : desktopIDs)
            writeFile(path(u"applications/"_s + name + u".desktop"_s), "[Desktop Entry]\nExec=browser\n");
    }

    [[nodiscard]] QString path(const QString &name) const { return root.filePath(name); }
    [[nodiscard]] BrowserSetup setup() const { return BrowserSetup(places); }
    [[nodiscard]] QString manifest(const QString &browser) const
    {
        return path(browser + u"/NativeMessagingHosts/app.kestrel.kestrel.json"_s);
    }
};

} // namespace

class TestBrowserSetup final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namesNoRelayThatGoesAway()
    {
        Home home({ u"chromium"_s });
        home.places.relayProgram += u" of nobody"_s;
        for (const bool isPassing : { false, true }) {
            home.places.isPassing = isPassing;
            const auto installed = home.setup().install();
            QVERIFY(!installed);
            QCOMPARE(installed.error().contains("Install it on this computer first"_L1), isPassing);
            QVERIFY(!QFileInfo::exists(home.manifest(u"config/chromium"_s)));
        }
    }

    void replacesAnotherExtensionWholly()
    {
        Home home({});
        QVERIFY(home.setup().install());
        const QString revision = home.setup().status().installedRevision;
        QVERIFY(!revision.isEmpty());
        QCOMPARE(revision, home.setup().status().shippedRevision);
        QCOMPARE(jsonOf(home.places.extension + u"/manifest.json"_s)["version_name"_L1], revision);
        QCOMPARE(contentOf(home.places.extension + u"/icons/16.png"_s),
                 contentOf(home.places.extensionSource + u"/icons/16.png"_s));

        // nothing to do means nothing is touched: a browser may be reading
        const QFileInfo before(home.places.extension);
        const QDateTime changed = before.metadataChangeTime();
        QVERIFY(home.setup().install());
        QCOMPARE(QFileInfo(home.places.extension).metadataChangeTime(), changed);

        home.places.extensionSource = home.path(u"newer"_s);
        writeFile(home.places.extensionSource + u"/manifest.json"_s, json("{'version':'2.0','key':'k'}"));
        QVERIFY(home.setup().status().shippedRevision.startsWith(u"2.0 ("_s));
        QCOMPARE(home.setup().status().installedRevision, revision);
        QVERIFY(home.setup().install());
        QCOMPARE(QDir(home.places.extension).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot),
                 QStringList({ u"manifest.json"_s, u"revision"_s }));
        QCOMPARE(QDir(home.path(u"data/kestrel"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList { u"extension"_s });
    }

    void losesNothingWhereNothingCanBeWritten()
    {
        Home home({ u"chromium"_s });
        QVERIFY(home.setup().install());
        const BrowserReport before = home.setup().status();
        home.places.extensionSource = home.path(u"newer"_s);
        writeFile(home.places.extensionSource + u"/manifest.json"_s,
                  json("{'version':'2.0','description':'" + QByteArray(200'000, 'x') + "'}"));

        // as on a full disk: a file takes some bytes and no more
        rlimit room {};
        getrlimit(RLIMIT_FSIZE, &room);
        const rlimit little { 100'000, room.rlim_max };
        const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &little);
        const auto failed = home.setup().install();
        setrlimit(RLIMIT_FSIZE, &room);
        std::signal(SIGXFSZ, ignored);

        QVERIFY(!failed);
        QVERIFY2(failed.error().contains(u"manifest.json"_s), qPrintable(failed.error()));
        QCOMPARE(home.setup().status().installedRevision, before.installedRevision);
        QVERIFY(QFileInfo::exists(home.places.extension + u"/worker.js"_s));
        QVERIFY(home.setup().install());
        QVERIFY(home.setup().status().installedRevision.startsWith(u"2.0"_s));
    }

    void saysWhatIsWrong()
    {
        // the first two are one browser
        Home home({ u"chromium"_s, u"chromium-browser"_s, u"brave-browser"_s });
        // a file where a folder must be, for one of the browsers
        writeFile(home.path(u"config/chromium"_s), "in the way");
        const auto installed = home.setup().install();
        QVERIFY(installed);
        QVERIFY(installed->at(0).error.contains(home.path(u"config/chromium"_s)));
        QCOMPARE(installed->at(1).error, QString());

        writeFile(home.manifest(u"config/BraveSoftware/Brave-Browser"_s), json("{'path':'/another/relay'}"));
        QCOMPARE(home.setup().status().browsers.at(1).manifest, HostManifest::Different);
        QVERIFY(home.setup().install());
        QCOMPARE(home.setup().status().browsers.at(1).manifest, HostManifest::Current);

        QFile::remove(home.places.relayProgram);
        QVERIFY(home.setup().install().error().contains(home.places.relayProgram));
        home.places.relayProgram = u"/bin/sh"_s;
        home.places.extensionSource = home.path(u"none"_s);
        QVERIFY(home.setup().install().error().contains(home.places.extensionSource));
    }

    void readsProfiles_data()
    {
        QTest::addColumn<QByteArray>("preferences");
        QTest::addColumn<QByteArray>("securePreferences");
        QTest::addColumn<QList<bool>>("found"); // extension, enabled, scripts

        const auto row = [](const char *name, const QByteArray &ours, const QList<bool> &found) {
            const QByteArray whole =
                json("{'extensions':{'settings':{'gcoehfepgndjcehifahbpicecdkiomml':" + ours + "}}}");
            QTest::addRow("%s", name) << whole << QByteArray("{}") << found;
            QTest::addRow("%s, in the other file", name) << QByteArray() << whole << found;
        };
        row("ready", json("{'path':'/e','disable_reasons':[],'user_scripts_enabled':true}"),
            { true, true, true });
        row("scripts off", json("{'path':'/e'}"), { true, true, false });
        row("turned off", json("{'path':'/e','disable_reasons':[1]}"), { true, false, false });
        row("turned off, as older browsers wrote it", json("{'path':'/e','disable_reasons':1}"),
            { true, false, false });
        row("a leftover", json("{'user_scripts_enabled':true}"), { false, false, false });
        QTest::newRow("broken") << QByteArray("{") << QByteArray("[]") << QList { false, false, false };
    }

    void readsProfiles()
    {
        QFETCH(QByteArray, preferences);
        QFETCH(QByteArray, securePreferences);
        QFETCH(QList<bool>, found);
        const Home home({ u"chromium"_s });
        const QString folder = home.path(u"config/chromium/"_s);
        writeFile(folder + u"Local State"_s,
                  json("{'profile':{'info_cache':{'Default':{'name':'Work'},'Profile 1':{}}}}"));
        writeFile(folder + u"Default/Preferences"_s, preferences);
        writeFile(folder + u"Default/Secure Preferences"_s, securePreferences);

        const QList<BrowserProfile> profiles = home.setup().status().browsers.at(0).profiles;
        QCOMPARE(profiles.size(), 2);
        QCOMPARE(profiles[0].name, u"Work"_s);
        QCOMPARE((QList { profiles[0].hasExtension, profiles[0].isEnabled, profiles[0].allowsScripts }),
                 found);
        QCOMPARE(profiles[1].name, u"Profile 1"_s);
        QVERIFY(!profiles[1].hasExtension);
    }

    void seesRunningRelays()
    {
        const Home home({ u"chromium"_s, u"brave-browser"_s });
        QVERIFY(QDir().mkpath(home.places.sockets));
        QFile::setPermissions(home.places.sockets, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QByteArray body =
            json("{'relay':1,'route':'extension','browser':'/b','browserPid':7,'revision':'3',"
                 "'userScripts':false,'userDataDir':'"
                 + home.path(u"config/chromium"_s).toUtf8() + "'}");
        const QList<QByteArray> greetings { body,
                                            json("{'relay':1,'route':'devtools','browser':'/own'}"),
                                            json("{'relay':2,'route':'extension'}"),
                                            "rubbish",
                                            {} };
        std::latch areListening(greetings.size());
        std::vector<std::jthread> relays;
        relays.reserve(size_t(greetings.size()));
        for (qsizetype i = 0; i < greetings.size(); ++i) {
            relays.emplace_back([&, i] {
                QLocalServer server;
                server.listen(home.places.sockets + u"/%1.sock"_s.arg(i));
                areListening.count_down();
                if (!server.waitForNewConnection(30'000))
                    return;
                QLocalSocket *client = server.nextPendingConnection();
                const auto length = quint32(greetings[i].size());
                client->write(reinterpret_cast<const char *>(&length), sizeof length);
                client->write(greetings[i]);
                client->waitForBytesWritten();
                if (i < 2) // the others go at once
                    client->waitForDisconnected();
            });
        }
        areListening.wait();
        const BrowserReport report = home.setup().status();
        relays.clear();

        QCOMPARE(report.browsers.at(0).relays.size(), 1);
        QCOMPARE(report.browsers.at(0).relays[0].browserProcess, 7);
        QCOMPARE(report.browsers.at(0).relays[0].revision, u"3"_s);
        QCOMPARE(report.browsers.at(0).relays[0].allowsScripts, std::optional(false));
        QVERIFY(report.browsers.at(1).relays.isEmpty());
        QCOMPARE(report.otherRelays.size(), 1);
        QCOMPARE(report.otherRelays[0].browser, u"/own"_s);
        QVERIFY(!report.otherRelays[0].allowsScripts);
    }
};

QTEST_GUILESS_MAIN(TestBrowserSetup)
#include "TestBrowserSetup.moc"
