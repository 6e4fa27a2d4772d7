#pragma once
#include "platform/HttpTransport.h"
#include <QList>
#include <QMap>
#include <QQueue>

namespace kestrel {

/// Answers from a script, by the path of the request. The last answer of a path is repeated.
class FakeHttpTransport final : public HttpTransport
{
    Q_OBJECT
public:
    using Answer = std::expected<HttpResponse, TransportError>;

    [[nodiscard]] QCoro::Task<Answer> send(HttpRequest request) override;
    [[nodiscard]] QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account,
                                                                                  QUrl address) override;

    void answer(const QString &path, int status, const QByteArray &body);
    void answer(const QString &path, const Answer &answer);

    /// While held, requests wait; release() lets those of one path, or all, go on.
    void hold() { m_isHeld = true; }
    void release(const QString &path = {});

    void setOnline(bool online);

    [[nodiscard]] int requestsTo(const QString &path) const;

    QList<HttpRequest> requests;
    int waiting = 0; ///< callers inside waitForNetwork

Q_SIGNALS:
    void released(const QString &path);
    void networkWaitEnded(const QString &key, int generation, bool superseded);

private:
    QMap<QString, QQueue<Answer>> m_answers;
    QMap<QString, int> m_waitGenerations;
    bool m_isHeld = false;
    bool m_isOnline = true;
};

} // namespace kestrel
