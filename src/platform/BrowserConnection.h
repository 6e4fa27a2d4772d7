#pragma once
#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>
#include <expected>

namespace kestrel {

/// How far the person's browsers are with what lets Kestrel drive their calls.
struct BrowserConnectionState
{
    QStringList browsers; ///< the names of those that could be connected; empty: none is installed
    bool isInstalled = false; ///< what a browser needs is in place on this machine
    QStringList connected; ///< the names of those that are connected now
    bool isScriptingOff = false; ///< a connected one keeps its "Allow User Scripts" switch off
    bool isOwnProfileOpen = false; ///< the browser profile of Kestrel's own is connected

    friend bool operator==(const BrowserConnectionState &, const BrowserConnectionState &) = default;
};

/// The way from a browser to Kestrel: what `kestrel browser status` and `kestrel browser install` stand for.
class BrowserConnection
{
public:
    BrowserConnection() = default;
    BrowserConnection(const BrowserConnection &) = delete;
    BrowserConnection &operator=(const BrowserConnection &) = delete;
    virtual ~BrowserConnection() = default;

    /// As it is now.
    [[nodiscard]] virtual QCoro::Task<BrowserConnectionState> state() = 0;
    /// Puts everything in place that can be put there without the person. The folder of the extension, which
    /// they load into the browser themselves, or what went wrong, ready to be shown.
    [[nodiscard]] virtual QCoro::Task<std::expected<QString, QString>> install() = 0;
};

} // namespace kestrel
