#pragma once
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class GoogleProvider;

/// The first account's sign-in as the agenda offers it while there is none. The provider outlives it.
class OnboardingModel final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the agenda is given it")
    Q_PROPERTY(bool isSigningIn READ isSigningIn NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
public:
    /// `missingClient` is what to say instead of a sign-in that cannot work; empty when it can.
    OnboardingModel(GoogleProvider &google, QString missingClient, QObject *parent = nullptr);

    /// A sign-in that was started here is under way.
    [[nodiscard]] bool isSigningIn() const { return m_signInsUnderWay > 0; }
    /// Of the last sign-in that failed; empty when none did since the last press.
    [[nodiscard]] QString error() const { return m_error; }

    /// Opens Google's consent page in the browser. A second press starts anew, for who closed the page.
    Q_INVOKABLE void connectAccount();

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] QCoro::Task<void> signIn();

    GoogleProvider &m_google;
    QString m_missingClient;
    QString m_error;
    int m_signInsUnderWay = 0;
    int m_lastAttempt = 0;
};

} // namespace kestrel
