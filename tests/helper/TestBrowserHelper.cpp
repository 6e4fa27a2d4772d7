#include "base/StartTask.h"
#include "helper/HelperSession.h"
#include "helper/PlayedRelay.h"
#include "meet/protocol/StateScript.h"
#include <QFile>
#include <QTest>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const QString poll = stateScript.toString();
const auto click = u"click()"_s;

QJsonObject tab(int number)
{
    return { { u"tab"_s, number } };
}

/// A browser with the tab 7, where scripts give `result`.
PlayedRelay::Answer withTab(const QJsonObject &result)
{
    return [result](const QJsonObject &request) -> std::optional<QJsonObject> {
        return request["op"_L1] == "find"_L1 ? tab(7) : result;
    };
}

std::optional<QJsonObject> noTab(const QJsonObject & /*request*/)
{
    return QJsonObject { { u"tab"_s, QJsonValue::Null } };
}

std::optional<QJsonObject> silence(const QJsonObject & /*request*/)
{
    return {};
}

} // namespace

class TestBrowserHelper final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void bringsWhatTheBrowserAnswers_data()
    {
        QTest::addColumn<QJsonObject>("found");
        QTest::addColumn<QJsonObject>("ran");
        QTest::addColumn<QString>("expected");
        const QJsonObject none { { u"tab"_s, QJsonValue::Null } };
        QTest::newRow("text") << tab(7) << QJsonObject { { u"result"_s, u"«ok»"_s } } << u"ok «ok» -"_s;
        QTest::newRow("nothing") << tab(7) << QJsonObject { { u"result"_s, QJsonValue::Null } }
                                 << u"ok - -"_s;
        QTest::newRow("no tab") << none << QJsonObject() << u"- - -"_s;
        QTest::newRow("left meanwhile") << tab(7) << QJsonObject { { u"gone"_s, true } } << u"- - -"_s;
        QTest::newRow("switched off")
            << tab(7) << QJsonObject { { u"error"_s, u"Allow User Scripts is off"_s } }
            << u"- - Allow User Scripts is off"_s;
        QTest::newRow("search fails")
            << QJsonObject { { u"error"_s, u"no"_s } } << QJsonObject() << u"- - no"_s;
        const auto unknown = u"- - The browser's extension answered in a way that is not known here"_s;
        QTest::newRow("tab of a wrong kind")
            << QJsonObject { { u"tab"_s, u"7"_s } } << QJsonObject() << unknown;
        QTest::newRow("result of a wrong kind") << tab(7) << QJsonObject { { u"result"_s, 3 } } << unknown;
    }
    void bringsWhatTheBrowserAnswers()
    {
        QFETCH(QJsonObject, found);
        QFETCH(QJsonObject, ran);
        Session session;
        PlayedRelay relay(session.sockets(), 1, [&](const QJsonObject &request) {
            return request["op"_L1] == "find"_L1 ? found : ran;
        });

        const auto reply = session.run(click, true);

        QVERIFY(hasCome(reply));
        QTEST(describe(**reply), "expected");
        for (const QJsonObject &request : relay.requests) {
            QCOMPARE(request["marker"_L1], QString(meetTabMarker));
            if (request["op"_L1] == "run"_L1)
                QCOMPARE((QList { request["tab"_L1], request["source"_L1], request["activate"_L1] }),
                         (QList<QJsonValue> { 7, click, true }));
        }
    }

    void takesTheEldestBrowserThatHasATab()
    {
        Session session;
        PlayedRelay empty(session.sockets(), 1, noTab);
        PlayedRelay young(session.sockets(), 3, withTab({ { u"result"_s, u"young"_s } }));
        auto old =
            std::make_unique<PlayedRelay>(session.sockets(), 2, withTab({ { u"result"_s, u"old"_s } }));

        const auto first = session.run(click);
        QVERIFY(hasCome(first));
        QCOMPARE(describe(**first), u"ok old -"_s);
        // it goes like one that was killed: its socket stays
        const QString left = old->path;
        QVERIFY(QFile::rename(left, left + u".kept"_s));
        old.reset();
        QVERIFY(QFile::rename(left + u".kept"_s, left));
        const auto second = session.run(click);
        QVERIFY(hasCome(second));
        QCOMPARE(describe(**second), u"ok young -"_s);
        const auto closed = started(session.channel.closeChromeTab(meetTabMarker));
        QVERIFY(hasCome(closed));
        QCOMPARE(young.requests.last()["op"_L1].toString(), u"close"_s);
        QCOMPARE(young.clients, 1); // the connection was kept
        QVERIFY(!QFile::exists(left));
    }

    void aSilentBrowserHoldsUpNobody()
    {
        Session session;
        PlayedRelay silent(session.sockets(), 1, silence);
        PlayedRelay hung(session.sockets(), 2, silence);
        hung.greeting.clear();
        PlayedRelay good(session.sockets(), 3, withTab({ { u"result"_s, u"good"_s } }));

        for (int i = 0; i < 5; ++i) {
            const auto reply = session.run(click);
            QVERIFY(hasCome(reply));
            QCOMPARE(describe(**reply), u"ok good -"_s);
        }
        QCOMPARE(silent.requests.size(), 1); // nothing piles up where nobody answers
    }

    void onePollAtATimeAndNoneForEver()
    {
        Session session;
        bool isOpen = false; // a dialog, which makes the page wait
        QJsonObject held;
        PlayedRelay relay(session.sockets(), 1,
                          [&](const QJsonObject &request) -> std::optional<QJsonObject> {
                              if (request["op"_L1] == "find"_L1)
                                  return tab(7);
                              if (request["source"_L1] == poll && isOpen) {
                                  held = request;
                                  return {};
                              }
                              return QJsonObject { { u"result"_s, u"{}"_s } };
                          });
        const auto polls = [&] {
            return std::ranges::count_if(
                relay.requests, [](const QJsonObject &request) { return request["source"_L1] == poll; });
        };
        isOpen = true;

        const auto first = session.run(poll);
        const auto second = session.run(poll);
        QVERIFY(hasCome(first) && hasCome(second));
        QCOMPARE(describe(**first), u"- - script timed out"_s);
        QCOMPARE(describe(**second), u"- - script timed out"_s);
        const auto third = session.run(poll);
        const auto pressed = session.run(click);
        QVERIFY(hasCome(pressed)); // others do not wait for the poll
        QCOMPARE(describe(**pressed), u"ok {} -"_s);
        QCOMPARE(polls(), 1);

        isOpen = false;
        relay.sendAll(PlayedRelay::frame({ { u"id"_s, held["id"_L1] }, { u"result"_s, u"late"_s } }));
        QVERIFY(hasCome(third));
        QCOMPARE(describe(**third), u"ok late -"_s);
        const auto fourth = session.run(poll);
        QVERIFY(hasCome(fourth));
        QCOMPARE(describe(**fourth), u"ok {} -"_s);
        QCOMPARE(polls(), 2);
    }

    void aRelayThatMisbehavesHarmsNothing_data()
    {
        QTest::addColumn<QByteArray>("greeting");
        QTest::addColumn<QByteArray>("bytes"); // instead of an answer to the script; empty: it ends
        QTest::addColumn<QString>("expected");
        const QByteArray good = PlayedRelay::frame({ { u"relay"_s, 1 }, { u"route"_s, u"extension"_s } });
        const QByteArray next = PlayedRelay::frame({ { u"relay"_s, 2 }, { u"route"_s, u"extension"_s } });
        const auto went = u"- - The browser went before it answered"_s;
        QTest::newRow("ends in the middle") << good << QByteArray() << went;
        QTest::newRow("10 MB") << good << PlayedRelay::prefix(10'000'000) + QByteArray(10'000'000, 'x')
                               << went;
        QTest::newRow("no JSON") << good << PlayedRelay::prefix(4) + "nope" << went;
        QTest::newRow("no object") << good << PlayedRelay::prefix(2) + "[]" << went;
        QTest::newRow("half a frame, then the end") << good << PlayedRelay::prefix(100) + "{" << went;
        QTest::newRow("strange identifiers")
            << good << PlayedRelay::prefix(9) + R"({"id":{}})" + PlayedRelay::prefix(9) + R"({"id":-9})"
            << went;
        QTest::newRow("another version") << next << QByteArray() << u"- - -"_s;
        QTest::newRow("garbage for a greeting")
            << QByteArray(5'000'000, '\xff') << QByteArray() << u"- - -"_s;
        QTest::newRow("another route")
            << PlayedRelay::frame({ { u"relay"_s, 1 } }) << QByteArray() << u"- - -"_s;
    }
    void aRelayThatMisbehavesHarmsNothing()
    {
        QFETCH(QByteArray, greeting);
        QFETCH(QByteArray, bytes);
        Session session;
        std::unique_ptr<PlayedRelay> bad;
        bad = std::make_unique<PlayedRelay>(
            session.sockets(), 1, [&](const QJsonObject &request) -> std::optional<QJsonObject> {
                if (request["op"_L1] == "find"_L1)
                    return tab(7);
                bad->sendAll(bytes);
                QMetaObject::invokeMethod(bad.get(), [&] { bad->leave(); }, Qt::QueuedConnection);
                return {};
            });
        bad->greeting = greeting;

        const auto reply = session.run(click);
        QVERIFY(hasCome(reply));
        QTEST(describe(**reply), "expected");
        const uint pid = session.helperPid();
        PlayedRelay good(session.sockets(), 2, withTab({ { u"result"_s, u"good"_s } }));
        const auto again = session.run(click);
        QVERIFY(hasCome(again));
        QCOMPARE(describe(**again), u"ok good -"_s);
        QCOMPARE(session.helperPid(), pid);
    }

    void aScriptOfTenMegabytesIsAnError()
    {
        Session session;
        PlayedRelay relay(session.sockets(), 1, withTab({ { u"result"_s, u"fits"_s } }));

        const auto huge = session.run(QString(10'000'000, u'x'));
        const auto largest = session.run(QString(900'000, u'x'));
        QVERIFY(hasCome(huge) && hasCome(largest));
        QCOMPARE(describe(**huge), u"- - The script is too long"_s);
        QCOMPARE(describe(**largest), u"ok fits -"_s);
    }

    void answersNobodyElse()
    {
        Session session;
        PlayedRelay relay(session.sockets(), 1, withTab({ { u"result"_s, u"mine"_s } }));
        const auto mine = session.run(click);
        QVERIFY(hasCome(mine));
        const auto asked = relay.requests.size();

        QDBusConnection stranger = session.bus.connection();
        DBusHelperChannel foreign(stranger, instance, {});
        const auto refused = started(foreign.executeJSInChromeTab(meetTabMarker, click, false));
        QVERIFY(hasCome(refused));
        QVERIFY(!(*refused)->has_value());
        QCOMPARE((*refused)->error(),
                 (HelperError { HelperError::Kind::Unreachable, u"Only app.kestrel.Played is answered"_s }));
        // and who has lost the name is a stranger too
        session.kestrel.unregisterService(instance);
        const auto former = session.run(click);
        QVERIFY(hasCome(former));
        QCOMPARE(describe(**former), u"unreachable"_s);
        QCOMPARE(relay.requests.size(), asked);
    }

    void installsOnlyWhoAsksAndOnlyToItsPlace_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("destination");
        QTest::addColumn<QString>("error");
        QTest::newRow("elsewhere") << QCoreApplication::applicationDirPath() << u"/opt/kestrel"_s
                                   << u"is installed to"_s;
        QTest::newRow("another folder") << u"/usr"_s << QString() << u"is not the folder of"_s;
        QTest::newRow("not there") << u"/nowhere"_s << QString() << u"is not the folder of"_s;
        QTest::newRow("the folder of whoever asks")
            << QCoreApplication::applicationDirPath() << QString() << u"does not hold Kestrel"_s;
    }
    void installsOnlyWhoAsksAndOnlyToItsPlace()
    {
        QFETCH(QString, source);
        QFETCH(QString, destination);
        QFETCH(QString, error);
        Session session;
        const auto reply = started(session.channel.installAppBundle(
            source, destination.isEmpty() ? session.destination() : destination));
        QVERIFY(hasCome(reply));
        QVERIFY2(describe(**reply).contains(error), qPrintable(describe(**reply)));
        QVERIFY(!QFile::exists(session.destination()));
    }

    void killedInTheMiddleItIsStartedAnew_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("killedAt"); // in the place of the browser's answer
        QTest::newRow("looking for the tab") << u"run"_s << u"find"_s;
        QTest::newRow("in the script") << u"run"_s << u"run"_s;
        QTest::newRow("closing the tab") << u"close"_s << u"close"_s;
        QTest::newRow("opening a window") << u"open"_s << u"open"_s;
        QTest::newRow("opening in the own profile") << u"open in own"_s << u"Target.getTargets"_s;
    }
    void killedInTheMiddleItIsStartedAnew()
    {
        QFETCH(QString, operation);
        QFETCH(QString, killedAt);
        Session session;
        session.installBrowser(u"/bin/true"_s);
        const bool isOwn = operation.endsWith("own"_L1);
        if (isOwn)
            session.write(session.preferences(), u"browserProfile=kestrel\n"_s);
        uint killed = 0;
        PlayedRelay relay(
            session.sockets(), 1, [&](const QJsonObject &request) -> std::optional<QJsonObject> {
                const QString op = (isOwn ? request["method"_L1] : request["op"_L1]).toString();
                if (op == killedAt && killed == 0) {
                    killed = session.helperPid();
                    ::kill(static_cast<pid_t>(killed), SIGKILL);
                    return {};
                }
                if (isOwn)
                    return QJsonObject { { u"error"_s, QJsonObject { { u"message"_s, u"no"_s } } } };
                return op == "find"_L1 ? tab(7)
                                       : QJsonObject { { u"result"_s, u"done"_s },
                                                       { u"closed"_s, true },
                                                       { u"opened"_s, true } };
            });
        const QString profile = session.folder.filePath(isOwn ? u"profile"_s : u"config/chromium"_s);
        relay.greeting = PlayedRelay::frame({ { u"relay"_s, 1 },
                                              { u"route"_s, isOwn ? u"devtools"_s : u"extension"_s },
                                              { u"userDataDir"_s, profile } });
        const auto call = [&] {
            auto text = std::make_shared<std::optional<QString>>();
            const auto keep = [text](const auto &answer) {
                *text = answer ? describe(answer) : u"unreachable: "_s + answer.error().description;
            };
            startTask("call",
                      [](auto &channel, QString wanted, QString desktopFile, auto then) -> QCoro::Task<void> {
                          if (wanted == "run"_L1)
                              then(co_await channel.executeJSInChromeTab(meetTabMarker, click, false));
                          else if (wanted == "close"_L1)
                              then(co_await channel.closeChromeTab(meetTabMarker));
                          else
                              then(co_await channel.openInChromeAppMode(
                                  desktopFile, u"https://meet.google.com/x"_s, 800, 600));
                      }(session.channel, operation, session.desktopFile(), keep));
            return text;
        };

        const auto reply = call();
        QVERIFY(hasCome(reply));
        QCOMPARE(**reply, u"unreachable: the browser helper ended before it answered"_s);

        const auto next = call();
        QVERIFY(hasCome(next));
        QCOMPARE(**next, isOwn ? u"no"_s : operation == "run"_L1 ? u"ok done -"_s : u"ok"_s);
        QVERIFY(session.helperPid() != killed);
    }

    void startsOnDemandAndEndsWhenIdle_data()
    {
        QTest::addColumn<QString>("configuration");
        QTest::newRow("by the bus") << QString();
        QTest::newRow("by ourselves, where the bus starts nothing") << QStringLiteral(EMPTY_BUS);
    }
    void startsOnDemandAndEndsWhenIdle()
    {
        QFETCH(QString, configuration);
        QString file;
        {
            Session session(configuration, { u"--idle"_s, u"0.05"_s });
            for (int i = 0; i < 2; ++i) {
                const auto reply = session.run(click);
                QVERIFY(hasCome(reply));
                QCOMPARE(describe(**reply), u"- - -"_s);
                QTRY_VERIFY_WITH_TIMEOUT(!session.isHelperThere(), 30000);
            }
            file = session.folder.filePath(u"run/dbus-1/services/%1.service"_s.arg(helperName));
            QVERIFY(QFile::exists(file));
        }
        QVERIFY(!QFile::exists(file));
    }

    void aProgramThatIsNotThereIsMissing()
    {
        for (const QString &configuration : { QString(), QStringLiteral(EMPTY_BUS) }) {
            Session session(configuration);
            DBusHelperChannel channel(session.kestrel, instance, { u"/nowhere/helper"_s, {} });
            const auto reply = started(channel.executeJSInChromeTab(meetTabMarker, click, false));
            QVERIFY(hasCome(reply));
            QVERIFY(!(*reply)->has_value());
            QVERIFY((*reply)->error().kind == HelperError::Kind::Missing);
        }
    }

    void somebodyElseUnderItsNameIsNotOurProtocol()
    {
        Session session;
        QDBusConnection other = session.bus.connection();
        QVERIFY(other.registerService(helperName));
        const auto reply = session.run(click);
        QVERIFY(hasCome(reply));
        QVERIFY(!(*reply)->has_value());
        QVERIFY((*reply)->error().kind == HelperError::Kind::NotOurProtocol);
    }

    void goesWithTheBus()
    {
        Session session;
        const auto reply = session.run(click);
        QVERIFY(hasCome(reply));
        const auto pid = static_cast<pid_t>(session.helperPid());
        session.bus.stop();
        QTRY_VERIFY_WITH_TIMEOUT(::kill(pid, 0) != 0, 30000);
        const auto after = session.run(click);
        QVERIFY(hasCome(after));
        QCOMPARE(describe(**after), u"unreachable"_s);
    }
};

QTEST_GUILESS_MAIN(TestBrowserHelper)
#include "TestBrowserHelper.moc"
