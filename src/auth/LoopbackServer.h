#pragma once
#include "auth/AuthErrors.h"
#include "auth/RedirectRequest.h"
#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QPromise>
#include <QString>
#include <QTimer>
#include <chrono>
#include <expected>
#include <memory>
#include <optional>

namespace kestrel {

/// Receives the one redirect of a browser sign-in on 127.0.0.1, answers the browser, and stops. One server
/// serves one sign-in. Main thread only.
class LoopbackServer final : public QObject
{
    Q_OBJECT
public:
    using Callback = RedirectCallback;
    using Result = std::expected<Callback, LoopbackError>;

    /// `logoPath` is the SVG file that the page shows; without one it shows a plain mark.
    explicit LoopbackServer(QString logoPath = defaultLogoPath(), QObject *parent = nullptr);
    /// Ends a wait as stop() does.
    ~LoopbackServer() override;

    [[nodiscard]] static QString defaultLogoPath();

    /// Listens on a free port, which port() then names.
    [[nodiscard]] std::expected<void, LoopbackError> start();
    /// Starts, and waits for the callback. To be called once.
    [[nodiscard]] QCoro::Task<Result> waitForCallback(std::chrono::milliseconds timeout);
    /// 0 until it listens and after it stopped.
    [[nodiscard]] quint16 port() const;
    /// Closes the port; who waits is told Cancelled. Answers that are complete still reach the browser.
    void stop();

private:
    class Listener;
    class Connection;

    /// What a connection is told, and how that ends the wait, if at all.
    struct Answer
    {
        QByteArray bytes;
        std::optional<Result> outcome;
    };

    /// `chunk` is what came first, as received; nothing when the connection ended without a byte.
    [[nodiscard]] Answer answerTo(const std::optional<QByteArray> &chunk);
    [[nodiscard]] QByteArray page(const QString &message);
    void finish(const Result &result);

    QString m_logoPath;
    std::optional<QString> m_logo; ///< the page's element, made once with the first page
    std::unique_ptr<Listener> m_listener;
    std::unique_ptr<QObject> m_connections; ///< parent of those that were not answered yet
    QTimer m_timeout;
    std::optional<QPromise<Result>> m_waiting;
};

} // namespace kestrel
