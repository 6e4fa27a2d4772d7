#pragma once
#include "platform/HttpTransport.h"
#include <QList>
#include <QMap>
#include <QQueue>
#include <coroutine>

namespace kestrel {

/// Answers from a script, by the path of the request. The last answer of a path is repeated. What waits goes
/// on in a later turn of the event loop, as it does with a real network.
class FakeHttpTransport final : public HttpTransport
{
    Q_OBJECT
public:
    using Answer = std::expected<HttpResponse, TransportError>;

    [[nodiscard]] bool isOnline() const override { return m_isOnline; }
    [[nodiscard]] QCoro::Task<Answer> send(HttpRequest request) override;
    [[nodiscard]] QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account,
                                                                                  QUrl address) override;

    void answer(const QString &path, int status, const QByteArray &body);
    void answer(const QString &path, const Answer &answer);

    /// While held, requests wait; release() lets those of one path, or all, go on.
    void hold() { m_isHeld = true; }
    void release(const QString &path = {});
    /// Those that wait go on waiting; who comes now does not.
    void holdNoMore() { m_isHeld = false; }

    void setOnline(bool online);

    [[nodiscard]] int requestsTo(const QString &path) const;

    QList<HttpRequest> requests;
    int waiting = 0; ///< callers inside waitForNetwork

private:
    /// To be awaited; stands in a list until it is resumed. Awaiting a signal instead would break when the
    /// signal is emitted twice in one turn: QCoro resumes for both.
    struct Waiter
    {
        QList<Waiter *> &waiters;
        QString key;
        bool isSuperseded = false;
        std::coroutine_handle<> coroutine = {};

        [[nodiscard]] bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> awaiting)
        {
            coroutine = awaiting;
            waiters.append(this);
        }
        void await_resume() const noexcept { }
    };

    /// Those of one key, or all.
    QList<Waiter *> take(QList<Waiter *> &waiters, const QString &key);
    void resumeLater(const QList<Waiter *> &waiters);

    QMap<QString, QQueue<Answer>> m_answers;
    QList<Waiter *> m_held;
    QList<Waiter *> m_offline;
    bool m_isHeld = false;
    bool m_isOnline = true;
};

} // namespace kestrel
