#include "app/SetupBrowserConnection.h"
#include "base/OnThread.h"
#include "base/StartTask.h"
#include "platform/linux/PrivateFile.h"
#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <atomic>
#include <latch>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

constexpr auto endsMeanwhile = "--ends-meanwhile";

/// Stands for all static objects, Qt's among them: a thread may be using them.
struct StaticObject
{
    ~StaticObject()
    {
        if (isInUse)
            ::_Exit(3);
    }
    std::atomic_bool isInUse = false;
};
StaticObject s_object;

/// A home with a browser, and the extension that is shipped.
struct Home
{
    QTemporaryDir root;
    BrowserPlaces places { root.path(),
                           root.filePath(u"config"_s),
                           { root.path() },
                           u":/kestrel/browser-extension"_s,
                           root.filePath(u"kestrel/browser-extension"_s),
                           root.filePath(u"sockets"_s),
                           QCoreApplication::applicationFilePath() };

    Home()
    {
        QFile entry(root.filePath(u"chromium.desktop"_s));
        QVERIFY(entry.open(QIODevice::WriteOnly) && entry.write("[Desktop Entry]\nExec=browser\n") > 0);
    }
};

template<typename T>
QCoro::Task<void> keep(QCoro::Task<T> task, QList<T> *results)
{
    results->append(co_await task);
}

/// Waits as a view does: for what may outlive it.
class View final : public QObject
{
public:
    QCoro::Task<void> load(std::latch *started, std::latch *released, QStringList *shown)
    {
        const QPointer self(this);
        const QString text = co_await onThread<QString>([started, released] {
            started->count_down();
            released->wait();
            return u"found"_s;
        });
        shown->append(self ? text : u"nobody waits"_s);
    }
};

int endMeanwhile(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Home home;
    std::latch started(1);
    startTask("look", [](std::latch *latch, BrowserPlaces places) -> QCoro::Task<void> {
        co_await onThread<int>([latch, places] {
            s_object.isInUse = true;
            latch->count_down();
            int found = 0;
            for (;;) // it is at work whenever the program ends
                found += BrowserSetup(places).status().browsers.size();
            return found;
        });
    }(&started, home.places));
    started.wait();
    return 0;
}

} // namespace

class TestWorkThreads final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void browsersAreConnectedWhileTheMainThreadStoresSettings()
    {
        const mode_t mask = ::umask(S_IWGRP | S_IWOTH);
        const auto restore = qScopeGuard([mask] { ::umask(mask); });
        const Home home;
        const QString settings = home.root.filePath(u"kestrel.ini"_s);
        QList<BrowserConnectionState> states;
        QList<std::expected<QString, QString>> installed;
        {
            SetupBrowserConnection connection(home.places);
            for (int i = 0; i < 4; ++i) {
                startTask("state", keep(connection.state(), &states));
                startTask("install", keep(connection.install(), &installed));
            }
        }
        int stored = 0;
        while (states.size() < 4 || installed.size() < 4) {
            QVERIFY(replaceFile(settings, QByteArray::number(++stored)));
            QVERIFY(QFile::remove(settings));
            QCoreApplication::processEvents();
        }
        for (const auto &folder : std::as_const(installed))
            QCOMPARE(folder, home.places.extension);
        for (const auto &state : std::as_const(states))
            QCOMPARE(state.browsers, QStringList { u"Chromium"_s });
        QCOMPARE(::umask(S_IWGRP | S_IWOTH), mode_t(S_IWGRP | S_IWOTH));
    }

    void filesOfSeveralThreadsAreNobodyElses()
    {
        const mode_t mask = ::umask(0);
        const auto restore = qScopeGuard([mask] { ::umask(mask); });
        const QTemporaryDir folder;
        std::atomic_int faults = 0;
        const auto work = [&](int number) {
            const QString path = folder.filePath(QString::number(number));
            for (int i = 0; i < 200; ++i) {
                QFile::remove(path);
                struct stat entry {};
                if (!replaceFile(path, "secret") || ::stat(QFile::encodeName(path).constData(), &entry) != 0
                    || (entry.st_mode & 0777) != 0600)
                    faults.fetch_add(1, std::memory_order_relaxed);
            }
        };
        {
            const std::jthread one(work, 1);
            const std::jthread two(work, 2);
            work(3);
        }
        QCOMPARE(faults.load(), 0);
        QCOMPARE(::umask(0), mode_t(0));
    }

    void whoWaitedMayBeGone_data()
    {
        QTest::addColumn<bool>("isGone");
        QTest::addColumn<QString>("shown");
        QTest::newRow("waits") << false << u"found"_s;
        QTest::newRow("gone") << true << u"nobody waits"_s;
    }

    void whoWaitedMayBeGone()
    {
        QFETCH(const bool, isGone);
        QFETCH(const QString, shown);
        std::latch started(1);
        std::latch released(1);
        QStringList all;
        auto view = std::make_unique<View>();
        startTask("load", view->load(&started, &released, &all));
        started.wait();
        if (isGone)
            view.reset();
        released.count_down();
        QTRY_COMPARE(all, QStringList { shown });
    }

    void theProgramMayEndMeanwhile()
    {
        const QByteArray self = QFile::encodeName(QCoreApplication::applicationFilePath());
        // QProcess forks in a library that ThreadSanitizer does not see
        const std::array arguments { self.constData(), endsMeanwhile, static_cast<const char *>(nullptr) };
        pid_t program = 0;
        QCOMPARE(::posix_spawn(&program, self.constData(), nullptr, nullptr,
                               const_cast<char **>(arguments.data()), environ),
                 0);
        int status = 0;
        QCOMPARE(::waitpid(program, &status, 0), program);
        QCOMPARE(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
    }
};

int main(int argc, char **argv)
{
    if (argc > 1 && argv[1] == QByteArrayView(endsMeanwhile))
        return leaveMain(endMeanwhile(argc, argv));
    const QCoreApplication application(argc, argv);
    TestWorkThreads test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestWorkThreads.moc"
