#include "app/OnboardingModel.h"
#include "base/StartTask.h"
#include "google/GoogleProvider.h"
#include <QPointer>

namespace kestrel {

OnboardingModel::OnboardingModel(GoogleProvider &google, QString missingClient, QObject *parent)
    : QObject(parent)
    , m_google(google)
    , m_missingClient(std::move(missingClient))
{
}

void OnboardingModel::connectAccount()
{
    if (!m_missingClient.isEmpty()) {
        m_error = m_missingClient;
        Q_EMIT changed();
        return;
    }
    startTask("sign-in", signIn());
}

QCoro::Task<void> OnboardingModel::signIn()
{
    const QPointer self(this);
    const int attempt = ++m_lastAttempt;
    ++m_signInsUnderWay;
    m_error.clear();
    Q_EMIT changed();

    const auto account = co_await m_google.signIn();
    if (!self)
        co_return;
    --m_signInsUnderWay;
    // an older page that times out says nothing about the one that is open now
    if (!account && attempt == m_lastAttempt)
        m_error = description(account.error());
    Q_EMIT changed();
}

} // namespace kestrel
