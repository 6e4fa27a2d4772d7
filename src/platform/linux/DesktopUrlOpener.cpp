#include "platform/linux/DesktopUrlOpener.h"
#include "base/Log.h"
#include <QCoreApplication>
#include <QCoro/QCoroSignal>
#include <QFile>
#include <QSocketNotifier>
#include <csignal>
#include <expected>
#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

/// A browser that was started, until it ends: then it is reaped. Owned by the application object, and let go
/// of with it. (QProcess would kill it then, and its startDetached() never tells how it ended.)
class StartedBrowser final : public QObject
{
    Q_OBJECT
public:
    explicit StartedBrowser(pid_t process)
        : QObject(QCoreApplication::instance())
        , m_process(process)
        , m_descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)))
        , m_notifier(m_descriptor, QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, &StartedBrowser::reap);
    }
    StartedBrowser(const StartedBrowser &) = delete;
    StartedBrowser &operator=(const StartedBrowser &) = delete;
    ~StartedBrowser() override { ::close(m_descriptor); }

Q_SIGNALS:
    void ended(bool well);

private:
    void reap()
    {
        m_notifier.setEnabled(false);
        int status = -1;
        const bool reaped = ::waitpid(m_process, &status, WNOHANG) == m_process;
        Q_EMIT ended(reaped && WIFEXITED(status) && WEXITSTATUS(status) == 0);
        deleteLater();
    }

    pid_t m_process;
    int m_descriptor;
    QSocketNotifier m_notifier;
};

namespace {

/// In a session of its own, so that what ends Kestrel's terminal or process group does not end it, and with
/// nothing of ours on its standard streams.
std::expected<pid_t, int> start(const QString &program, const QUrl &url)
{
    QByteArray name = QFile::encodeName(program);
    QByteArray address = url.toEncoded();
    char *const arguments[] = { name.data(), address.data(), nullptr };

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t ignoredByUs;
    sigemptyset(&ignoredByUs);
    sigaddset(&ignoredByUs, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &ignoredByUs);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);
    pid_t process = 0;
    const int error = posix_spawnp(&process, name.constData(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return std::unexpected(error);
    return process;
}

} // namespace

DesktopUrlOpener::DesktopUrlOpener(std::chrono::milliseconds patience)
    : m_patience(patience)
{
}

QCoro::Task<bool> DesktopUrlOpener::open(QUrl url)
{
    if ((url.scheme() != "https"_L1 && url.scheme() != "http"_L1) || url.host().isEmpty())
        co_return false;
    const QString chosen = qEnvironmentVariable("KESTREL_BROWSER");
    const QString program = chosen.isEmpty() ? u"xdg-open"_s : chosen;
    const auto process = start(program, url);
    if (!process) {
        qCWarning(lcApp).noquote() << program << "cannot be started:" << qt_error_string(process.error());
        co_return false;
    }
    const auto well = co_await qCoro(new StartedBrowser(*process), &StartedBrowser::ended, m_patience);
    co_return well.value_or(true);
}

} // namespace kestrel

#include "DesktopUrlOpener.moc"
