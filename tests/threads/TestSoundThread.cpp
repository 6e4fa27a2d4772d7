#include "platform/linux/CanberraSoundPlayer.h"
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <canberra.h>
#include <thread>

// The sound library, as far as it is used. What no lock guards here is what the player promises to guard: a
// context is used by one thread at a time. The counters tell without putting the threads in an order.
struct ca_context
{
    int sounds = 0;
};
struct ca_proplist
{
};

namespace {

std::atomic_int s_contexts = 0;
std::atomic_int s_played = 0;
std::atomic_int s_failed = 0;
std::atomic_int s_complaints = 0;

void increment(std::atomic_int &counter, int by = 1)
{
    counter.fetch_add(by, std::memory_order_relaxed);
}

int read(const std::atomic_int &counter)
{
    return counter.load(std::memory_order_relaxed);
}

/// Of this process.
qsizetype threads()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

} // namespace

int ca_context_create(ca_context **context)
{
    increment(s_contexts);
    *context = new ca_context;
    return CA_SUCCESS;
}

int ca_context_open(ca_context * /*context*/)
{
    return CA_SUCCESS;
}

int ca_context_destroy(ca_context *context)
{
    delete context;
    increment(s_contexts, -1);
    return CA_SUCCESS;
}

int ca_context_change_props(ca_context * /*context*/, ...)
{
    return CA_SUCCESS;
}

// every fifth sound of a connection fails, as with a server that went
int ca_context_play_full(ca_context *context, uint32_t /*id*/, ca_proplist * /*properties*/,
                         ca_finish_callback_t /*callback*/, void * /*data*/)
{
    if (++context->sounds % 5 != 0) {
        increment(s_played);
        return CA_SUCCESS;
    }
    increment(s_failed);
    return CA_ERROR_DISCONNECTED;
}

int ca_proplist_create(ca_proplist **properties)
{
    *properties = new ca_proplist;
    return CA_SUCCESS;
}

int ca_proplist_destroy(ca_proplist *properties)
{
    delete properties;
    return CA_SUCCESS;
}

int ca_proplist_sets(ca_proplist * /*properties*/, const char * /*key*/, const char * /*value*/)
{
    return CA_SUCCESS;
}

const char *ca_strerror(int /*code*/)
{
    return "gone";
}

using namespace Qt::StringLiterals;
using namespace kestrel;

class TestSoundThread final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void playsOneAtATimeAndOutlivesThePlayer()
    {
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &) {
            if (type == QtWarningMsg)
                increment(s_complaints);
        });
        const qsizetype before = threads();
        const QTemporaryDir cache;
        {
            CanberraSoundPlayer player(u"/nowhere"_s, cache.path());
            while (read(s_played) < 100) {
                player.play(u"Tink"_s);
                std::this_thread::yield();
            }
            player.play(u"Tink"_s);
        }
        // what was playing when the player went ends by itself
        while (threads() > before)
            std::this_thread::yield();
        QCOMPARE(read(s_contexts), 0);
        QVERIFY(read(s_failed) >= 20);
        QCOMPARE(read(s_complaints), 1);
        QVERIFY(QFileInfo::exists(cache.filePath(u"Tink.oga"_s)));
    }
};

QTEST_GUILESS_MAIN(TestSoundThread)
#include "TestSoundThread.moc"
