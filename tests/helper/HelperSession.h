#pragma once
#include "base/Started.h"
#include "helper/PrivateBus.h"
#include "meet/DBusHelperChannel.h"
#include "meet/protocol/HelperNames.h"
#include "meet/protocol/MeetTabMarker.h"
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace kestrel {

using namespace Qt::StringLiterals;

inline const auto instance = u"app.kestrel.Played"_s;
inline const QString helperName = instance + helperNameSuffix;

/// A bus, the Kestrel that owns its name there, and folders for one test.
struct Session
{
    explicit Session(const QString &configuration = {}, const QStringList &options = {})
        : bus((makeFolders(), configuration))
        , kestrel(bus.connection())
        , channel(
              kestrel, instance,
              { QStringLiteral(BROWSER_HELPER),
                QStringList { u"--sockets"_s, sockets(), u"--preferences"_s, preferences(), u"--profile"_s,
                              folder.filePath(u"profile"_s), u"--install-home"_s, folder.path() }
                    + options })
    {
        kestrel.registerService(instance);
    }

    [[nodiscard]] QString sockets() const { return folder.filePath(u"s"_s); }
    [[nodiscard]] QString preferences() const { return folder.filePath(u"it's $1.ini"_s); }
    [[nodiscard]] QString destination() const { return folder.filePath(u".local/opt/kestrel"_s); }
    [[nodiscard]] QString desktopFile() const
    {
        return folder.filePath(u"data/applications/chromium.desktop"_s);
    }
    [[nodiscard]] uint helperPid() { return kestrel.interface()->servicePid(helperName).value(); }
    [[nodiscard]] bool isHelperThere() { return kestrel.interface()->isServiceRegistered(helperName); }

    void write(const QString &path, const QString &text)
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(text.toUtf8());
    }
    /// The one browser that is installed; `exec` is how it is started.
    void installBrowser(const QString &exec)
    {
        write(desktopFile(), u"[Desktop Entry]\nType=Application\nName=Chromium\nExec=%1\n"_s.arg(exec));
    }

    [[nodiscard]] auto run(const QString &source, bool activate = false,
                           const QString &marker = meetTabMarker)
    {
        return started(channel.executeJSInChromeTab(marker, source, activate));
    }

    QTemporaryDir folder;
    PrivateBus bus;
    QDBusConnection kestrel;
    DBusHelperChannel channel;

private:
    void makeFolders()
    {
        const auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        for (const auto *name : { "run", "data/applications", "config", "s" }) {
            const QString path = folder.filePath(QString::fromLatin1(name));
            QDir().mkpath(path);
            QFile::setPermissions(path, owner);
        }
        qputenv("XDG_RUNTIME_DIR", folder.filePath(u"run"_s).toUtf8());
        qputenv("XDG_DATA_HOME", folder.filePath(u"data"_s).toUtf8());
        qputenv("XDG_DATA_DIRS", "/nowhere");
        qputenv("XDG_CONFIG_HOME", folder.filePath(u"config"_s).toUtf8());
    }
};

template<typename T>
bool hasCome(const std::shared_ptr<std::optional<T>> &place)
{
    return QTest::qWaitFor([&] { return place->has_value(); }, 30000);
}

inline QString describe(const std::expected<HelperReply, HelperError> &reply)
{
    if (!reply)
        return u"unreachable"_s;
    return reply->ok ? u"ok"_s : reply->error.value_or(u"-"_s);
}

inline QString describe(const std::expected<HelperScriptReply, HelperError> &reply)
{
    if (!reply)
        return u"unreachable"_s;
    return u"%1 %2 %3"_s.arg(reply->ok ? u"ok"_s : u"-"_s, reply->result.value_or(u"-"_s),
                             reply->error.value_or(u"-"_s));
}

} // namespace kestrel
