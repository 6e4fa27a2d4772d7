#include "support/FakeHttpTransport.h"
#include <QCoro/QCoroSignal>

using namespace Qt::StringLiterals;

namespace kestrel {

QCoro::Task<FakeHttpTransport::Answer> FakeHttpTransport::send(HttpRequest request)
{
    requests.append(request);
    const QString path = request.url.path();
    if (m_isHeld) {
        QString let;
        do {
            let = co_await qCoro(this, &FakeHttpTransport::released);
        } while (!let.isEmpty() && let != path);
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
    const QString key = account + u' ' + address.path();
    const int generation = ++m_waitGenerations[key];
    Q_EMIT networkWaitEnded(key, generation - 1, true);
    ++waiting;
    for (;;) {
        const auto [ended, endedGeneration, superseded] =
            co_await qCoro(this, &FakeHttpTransport::networkWaitEnded);
        const bool mine = ended == key && endedGeneration == generation;
        if (mine && superseded) {
            --waiting;
            co_return std::unexpected(TransportError { TransportError::Kind::Superseded, u"superseded"_s });
        }
        if (ended.isEmpty()) {
            --waiting;
            co_return std::expected<void, TransportError>();
        }
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
    Q_EMIT released(path);
}

void FakeHttpTransport::setOnline(bool online)
{
    m_isOnline = online;
    if (online)
        Q_EMIT networkWaitEnded({}, 0, false);
}

int FakeHttpTransport::requestsTo(const QString &path) const
{
    return static_cast<int>(std::count_if(requests.begin(), requests.end(),
                                          [&](const auto &request) { return request.url.path() == path; }));
}

} // namespace kestrel
