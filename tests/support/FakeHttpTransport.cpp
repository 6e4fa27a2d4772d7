#include "support/FakeHttpTransport.h"
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

QCoro::Task<FakeHttpTransport::Answer> FakeHttpTransport::send(HttpRequest request)
{
    requests.append(request);
    const QString path = request.url.path();
    if (m_isHeld) {
        Waiter waiter { m_held, path };
        co_await waiter;
    }
    auto &answers = m_answers[path];
    if (answers.isEmpty())
        co_return HttpResponse { 404, "no answer in the test's script for " + path.toUtf8() };
    co_return answers.size() > 1 ? answers.dequeue() : answers.head();
}

QCoro::Task<std::expected<void, TransportError>> FakeHttpTransport::waitForNetwork(QString account,
                                                                                   QUrl address)
{
    if (m_isOnline)
        co_return std::expected<void, TransportError>();
    const QString key = account + u' ' + address.host() + address.path();
    const auto older = take(m_offline, key);
    for (Waiter *waiter : older)
        waiter->isSuperseded = true;
    resumeLater(older);

    waiting = static_cast<int>(m_offline.size()) + 1;
    Waiter waiter { m_offline, key };
    co_await waiter;
    if (waiter.isSuperseded)
        co_return std::unexpected(TransportError { TransportError::Kind::Superseded, u"superseded"_s });
    co_return std::expected<void, TransportError>();
}

QList<FakeHttpTransport::Waiter *> FakeHttpTransport::take(QList<Waiter *> &waiters, const QString &key)
{
    QList<Waiter *> taken;
    for (Waiter *waiter : std::exchange(waiters, {}))
        (key.isEmpty() || waiter->key == key ? taken : waiters).append(waiter);
    return taken;
}

void FakeHttpTransport::resumeLater(const QList<Waiter *> &waiters)
{
    for (const Waiter *waiter : waiters) {
        QMetaObject::invokeMethod(
            this, [coroutine = waiter->coroutine] { coroutine.resume(); }, Qt::QueuedConnection);
    }
}

void FakeHttpTransport::answer(const QString &path, int status, const QByteArray &body)
{
    answer(path, HttpResponse { status, body });
}

void FakeHttpTransport::answer(const QString &path, const Answer &answer)
{
    m_answers[path].enqueue(answer);
}

void FakeHttpTransport::release(const QString &path)
{
    if (path.isEmpty())
        m_isHeld = false;
    resumeLater(take(m_held, path));
}

void FakeHttpTransport::setOnline(bool online)
{
    m_isOnline = online;
    if (online) {
        resumeLater(take(m_offline, {}));
        waiting = 0;
    }
}

int FakeHttpTransport::requestsTo(const QString &path) const
{
    return static_cast<int>(std::count_if(requests.begin(), requests.end(),
                                          [&](const auto &request) { return request.url.path() == path; }));
}

} // namespace kestrel
