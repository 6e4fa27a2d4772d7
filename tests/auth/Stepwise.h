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

/// A service of the platform with a gate before each call.
template<typename Service>
class Stepwise : public Service
{
public:
    Stepwise(Service &service, Gate &gate)
        : m_service(service)
        , m_gate(gate)
    {
    }

protected:
    Service &m_service;
    Gate &m_gate;
};

class StepwiseSecretStore final : public Stepwise<SecretStore>
{
public:
    using Stepwise::Stepwise;

    QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(SecretItem item) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.copyMatching(item);
    }
    QCoro::Task<SecretStatus> update(SecretItem item, QByteArray data) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.update(item, data);
    }
    QCoro::Task<SecretStatus> add(SecretItem item, QByteArray data) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.add(item, data);
    }
    QCoro::Task<SecretStatus> remove(SecretItem item) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.remove(item);
    }
    QCoro::Task<SecretStoreCondition> condition() override { return m_service.condition(); }
};

class StepwiseTransport final : public Stepwise<HttpTransport>
{
public:
    using Stepwise::Stepwise;

    QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.send(request);
    }
    QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account, QUrl address) override
    {
        return m_service.waitForNetwork(account, address);
    }
    [[nodiscard]] bool isOnline() const override { return m_service.isOnline(); }
};

class StepwiseOpener final : public Stepwise<UrlOpener>
{
public:
    using Stepwise::Stepwise;

    QCoro::Task<bool> open(QUrl url) override
    {
        co_await m_gate.pass();
        co_return co_await m_service.open(url);
    }
};

} // namespace kestrel
