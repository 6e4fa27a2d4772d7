#include "helper/StartedProcess.h"
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace kestrel {

/// A property of a unit, as systemd takes it: (sv).
struct UnitProperty
{
    QString name;
    QDBusVariant value;
};

/// A further unit, (sa(sv)), of which there are none.
struct FurtherUnit
{
    QString name;
    QList<UnitProperty> properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const UnitProperty &property)
{
    argument.beginStructure();
    argument << property.name << property.value;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, UnitProperty & /*property*/)
{
    return argument; // nobody sends us any
}

QDBusArgument &operator<<(QDBusArgument &argument, const FurtherUnit &unit)
{
    argument.beginStructure();
    argument << unit.name << unit.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FurtherUnit & /*unit*/)
{
    return argument;
}

} // namespace kestrel

Q_DECLARE_METATYPE(kestrel::UnitProperty)
Q_DECLARE_METATYPE(kestrel::FurtherUnit)

namespace kestrel {

namespace {

constexpr int scopePatience = 2000; // milliseconds

/// Tells once that a descriptor can be read.
class ReadableOnce final : public QObject
{
public:
    ReadableOnce(int descriptor, std::function<void()> then)
        : QObject(QCoreApplication::instance())
        , m_notifier(descriptor, QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, [this, then = std::move(then), descriptor] {
            m_notifier.setEnabled(false);
            then();
            ::close(descriptor);
            deleteLater();
        });
    }

private:
    QSocketNotifier m_notifier;
};

/// Between fork and exec only what is safe beside other threads.
[[noreturn]] void becomeProgram(int go, int fault, int nowhere, char *const *arguments)
{
    ::setsid();
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    for (const int stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        ::dup2(nowhere, stream);
    // we are to be in our own scope before we have children
    char goes = 0;
    if (::read(go, &goes, 1) == 1)
        ::execv(arguments[0], arguments);
    const int error = errno;
    [[maybe_unused]] const ssize_t told = ::write(fault, &error, sizeof error);
    ::_exit(127);
}

Awaited<bool> moveToScope(const QDBusConnection &bus, pid_t pid)
{
    static const bool isRegistered = [] {
        qDBusRegisterMetaType<UnitProperty>();
        qDBusRegisterMetaType<QList<UnitProperty>>();
        qDBusRegisterMetaType<FurtherUnit>();
        qDBusRegisterMetaType<QList<FurtherUnit>>();
        qDBusRegisterMetaType<QList<uint>>();
        return true;
    }();
    Q_UNUSED(isRegistered)
    const QList<uint> pids { static_cast<uint>(pid) };
    const QList<UnitProperty> properties {
        { u"PIDs"_s, QDBusVariant(QVariant::fromValue(pids)) },
        { u"Description"_s, QDBusVariant(u"Started by Kestrel"_s) },
        { u"CollectMode"_s, QDBusVariant(u"inactive-or-failed"_s) },
    };
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.systemd1"_s, u"/org/freedesktop/systemd1"_s,
                                       u"org.freedesktop.systemd1.Manager"_s, u"StartTransientUnit"_s);
    call.setAutoStartService(false);
    call << u"app-kestrel-%1.scope"_s.arg(pid) << u"fail"_s << QVariant::fromValue(properties)
         << QVariant::fromValue(QList<FurtherUnit>());
    Awaited<bool> moved;
    auto *pending =
        new QDBusPendingCallWatcher(bus.asyncCall(call, scopePatience), QCoreApplication::instance());
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, pending, [pending, moved] {
        pending->deleteLater();
        moved.settle(!pending->isError());
    });
    return moved;
}

} // namespace

QCoro::Task<std::expected<StartedProcess, QString>> startProcess(QDBusConnection bus, QStringList command)
{
    const QString program = QStandardPaths::findExecutable(command.value(0));
    if (program.isEmpty())
        co_return std::unexpected(u"There is no program %1"_s.arg(command.value(0)));
    QList<QByteArray> words { QFile::encodeName(program) };
    for (const QString &argument : command.mid(1))
        words.append(QFile::encodeName(argument));
    std::vector<char *> arguments;
    for (QByteArray &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int go[2] = { -1, -1 };
    int fault[2] = { -1, -1 };
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    pid_t pid = -1;
    if (nowhere >= 0 && ::pipe2(go, O_CLOEXEC) == 0 && ::pipe2(fault, O_CLOEXEC) == 0)
        pid = ::fork();
    if (pid == 0) {
        ::close(go[1]);
        becomeProgram(go[0], fault[1], nowhere, arguments.data());
    }
    const int error = errno;
    for (const int descriptor : { nowhere, go[0], fault[1] })
        ::close(descriptor);
    if (pid < 0) {
        ::close(go[1]);
        ::close(fault[0]);
        co_return std::unexpected(qt_error_string(error));
    }

    StartedProcess process { pid, {} };
    new ReadableOnce(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)), [process] {
        int status = 0;
        const bool isReaped = ::waitpid(process.pid, &status, WNOHANG) == process.pid;
        process.ended.settle(isReaped && WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    });
    co_await moveToScope(bus, pid);

    [[maybe_unused]] const ssize_t told = ::write(go[1], "", 1);
    ::close(go[1]);
    const Awaited<int> executed; // 0, or a number of errno
    new ReadableOnce(fault[0], [executed, descriptor = fault[0]] {
        int number = 0;
        const bool failed = ::read(descriptor, &number, sizeof number) == sizeof number;
        executed.settle(failed ? number : 0);
    });
    if (const int number = co_await executed; number != 0)
        co_return std::unexpected(u"%1: %2"_s.arg(program, qt_error_string(number)));
    co_return process;
}

} // namespace kestrel
