#pragma once
#include "platform/AwaitedBytes.h"
#include "platform/HttpTransport.h"
#include "platform/SecretStore.h"
#include "platform/UrlOpener.h"
#include <QCoro/QCoroFuture>
#include <QPromise>
#include <deque>
#include <utility>

namespace kestrel {

/// Makes what passes through it wait until the test lets it go on, one at a time.
class Gate final
{
public:
    QCoro::Task<void> pass()
    {
        if (m_isOpen)
            co_return;
        auto &promise = m_waiting.emplace_back();
        promise.start();
        co_await promise.future();
    }

    [[nodiscard]] int waiting() const { return static_cast<int>(m_waiting.size()); }
    void step()
    {
        m_waiting.front().finish();
        m_waiting.pop_front();
    }
    void open()
    {
        m_isOpen = true;
        while (!m_waiting.empty())
            step();
    }

private:
    std::deque<QPromise<void>> m_waiting;
    bool m_isOpen = false;
};

/// The platform's services with a gate before each call.
class StepwiseSecretStore final : public SecretStore
{
public:
    StepwiseSecretStore(SecretStore &store, Gate &gate)
        : m_store(store)
        , m_gate(gate)
    {
    }

    QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(SecretItem item) override
    {
        co_await m_gate.pass();
        co_return co_await m_store.copyMatching(item);
    }
    QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) override
    {
        co_await m_gate.pass();
        co_return co_await m_store.update(item, data);
    }
    QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) override
    {
        co_await m_gate.pass();
        co_return co_await m_store.add(item, data);
    }
    QCoro::Task<SecretStatus> remove(SecretItem item) override
    {
        co_await m_gate.pass();
        co_return co_await m_store.remove(item);
    }

private:
    SecretStore &m_store;
    Gate &m_gate;
};

class StepwiseTransport final : public HttpTransport
{
public:
    StepwiseTransport(HttpTransport &transport, Gate &gate)
        : m_transport(transport)
        , m_gate(gate)
    {
    }

    QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request) override
    {
        co_await m_gate.pass();
        co_return co_await m_transport.send(request);
    }
    QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account, QUrl address) override
    {
        co_await m_gate.pass();
        co_return co_await m_transport.waitForNetwork(account, address);
    }

private:
    HttpTransport &m_transport;
    Gate &m_gate;
};

class StepwiseOpener final : public UrlOpener
{
public:
    StepwiseOpener(UrlOpener &opener, Gate &gate)
        : m_opener(opener)
        , m_gate(gate)
    {
    }

    QCoro::Task<bool> open(QUrl url) override
    {
        co_await m_gate.pass();
        co_return co_await m_opener.open(url);
    }

private:
    UrlOpener &m_opener;
    Gate &m_gate;
};

} // namespace kestrel
