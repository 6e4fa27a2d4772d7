#pragma once
#include "helper/AppModeWindows.h"
#include "helper/MeetTabs.h"
#include "helper/RelayDirectory.h"
#include "platform/InstallPlaces.h"
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <chrono>

namespace kestrel {

struct HelperOptions
{
    QString instance; ///< the bus name of the Kestrel that we belong to
    QString socketFolder; ///< of the browsers' relays
    AppModeWindows::Place windows;
    InstallPlaces install; ///< the one place that the application is installed to
    QStringList startArguments; ///< of the installed copy, besides that it is fresh
    std::chrono::milliseconds idle {}; ///< without calls, after which we end
};

/// The four operations on the bus, for the owner of our Kestrel's name alone. Calls do not wait for one
/// another. Ends the event loop when nothing was asked for a while, or when the bus goes. Main thread only.
class BrowserHelper final : public QObject, protected QDBusContext
{
    Q_OBJECT
public:
    BrowserHelper(HelperOptions options, QDBusConnection bus);

    /// False when somebody else has the name.
    [[nodiscard]] bool claimName();

    // On the bus only, called by the adaptor. What they return is not sent: the answers follow.
    bool OpenInChromeAppMode(const QString &chromePath, const QString &url, int windowWidth, int windowHeight,
                             QStringList &error);
    bool InstallAppBundle(const QString &sourcePath, const QString &destinationPath, QStringList &error);
    bool ExecuteJSInChromeTab(const QString &urlSubstring, const QString &jsSource, bool activate,
                              QStringList &result, QStringList &error);
    bool CloseChromeTab(const QString &urlSubstring, QStringList &error);

private Q_SLOTS:
    void leave();

private:
    using Answer = QCoro::Task<QVariantList>;

    /// Answers the call under way by what `work` gives, if its caller may ask.
    void answerLater(std::function<Answer()> work);
    QCoro::Task<void> answer(QDBusMessage call, std::function<Answer()> work);
    [[nodiscard]] QCoro::Task<bool> mayAsk(QString caller);
    [[nodiscard]] Answer open(QString chromePath, QString url, QSize size);
    [[nodiscard]] Answer install(QString caller, QString source, QString destination);
    [[nodiscard]] Answer run(QString marker, QString source, bool activate);
    [[nodiscard]] Answer close(QString marker);
    /// The path of the program that stands behind a name on the bus.
    [[nodiscard]] QCoro::Task<QString> programOf(QString caller);
    void rest();

    HelperOptions m_options;
    QDBusConnection m_bus;
    QDBusServiceWatcher m_instance;
    QString m_owner; ///< of the instance's name, as last asked; empty after a change
    RelayDirectory m_relays;
    MeetTabs m_tabs;
    AppModeWindows m_windows;
    QTimer m_idle;
    int m_underWay = 0;
    bool m_hasInstalled = false;
    bool m_isLeaving = false;
};

} // namespace kestrel
