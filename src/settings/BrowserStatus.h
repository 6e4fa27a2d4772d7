#pragma once
#include "platform/BrowserConnection.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// Whether a browser lets Kestrel drive its calls, in a sentence, and the way to get there. Asks only while
/// it is active, that is while somebody can see it. The connection outlives it.
class BrowserStatus final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY changed)
    Q_PROPERTY(bool canInstall READ canInstall NOTIFY changed)
    Q_PROPERTY(QString installText READ installText NOTIFY changed)
    Q_PROPERTY(bool isInstalling READ isInstalling NOTIFY changed)
    Q_PROPERTY(QString steps READ steps NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool isActive READ isActive WRITE setActive NOTIFY activeChanged)
public:
    explicit BrowserStatus(BrowserConnection &connection);

    void retranslate();
    /// Becoming active asks at once, and then again every few seconds.
    void setActive(bool active);
    [[nodiscard]] bool isActive() const { return m_timer.isActive(); }

    /// Empty until the first answer is there.
    [[nodiscard]] QString text() const;
    [[nodiscard]] QString symbol() const;
    /// And nothing is left to be done.
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] bool canInstall() const;
    [[nodiscard]] QString installText() const;
    [[nodiscard]] bool isInstalling() const { return m_isInstalling; }
    /// What is left for the person to do in the browser, a line a step; empty before the installation
    /// and once it is done.
    [[nodiscard]] QString steps() const;
    /// Of the last installation; empty when it did not fail.
    [[nodiscard]] QString error() const { return m_error; }

    Q_INVOKABLE void install();

Q_SIGNALS:
    void changed();
    void activeChanged();

private:
    void startAsking();
    [[nodiscard]] QCoro::Task<void> ask();
    [[nodiscard]] QCoro::Task<void> doInstall();

    BrowserConnection &m_connection;
    QTimer m_timer;
    BrowserConnectionState m_state;
    QString m_extensionFolder; ///< of an installation that was made here
    QString m_error;
    bool m_isKnown = false;
    bool m_isAsking = false;
    bool m_isInstalling = false;
};

} // namespace kestrel
