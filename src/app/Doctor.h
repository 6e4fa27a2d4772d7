#pragma once
#include "app/DesktopServices.h"
#include "command/DoctorReport.h"
#include "platform/BrowserConnection.h"
#include "platform/HelperChannel.h"
#include "platform/Notifications.h"
#include "platform/SecretStore.h"
#include "platform/SoundPlayer.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

namespace kestrel {

class AppEnvironment;
class HotkeyDispatcher;
class HttpTransport;
class StreamDeckBridge;

/// Looks at everything that an alert needs on its way from the calendar to the screen, and changes none of
/// it. Whatever has to be asked of another process is asked at once and waited for `patience`: one that hangs
/// is a finding too. What it is given outlives it. Main thread only.
class Doctor final : public QObject
{
    Q_OBJECT
public:
    /// Looking at the connected browsers takes two seconds at most.
    static constexpr std::chrono::milliseconds usualPatience { 3000 };

    struct Patient
    {
        AppEnvironment &environment;
        SecretStore &secrets;
        HttpTransport &transport;
        DesktopServices desktop;
        HotkeyDispatcher &hotkeys;
        StreamDeckBridge &bridge;
        bool hasClient = true; ///< there is an OAuth client to sign in with
        std::chrono::milliseconds patience = usualPatience;
    };

    explicit Doctor(const Patient &patient);

    /// With a test alert: shows one where alerts are shown, which goes by itself, unless a real one is there.
    [[nodiscard]] QCoro::Task<DoctorReport> examine(bool withTestAlert);

private:
    /// What other processes answered; absent: they did not in time.
    struct Answers
    {
        std::optional<SecretStoreCondition> secrets;
        std::optional<SoundCondition> sound;
        std::optional<std::optional<NotificationService>> notifications;
        std::optional<BrowserConnectionState> browser;
        std::optional<HelperCondition> helper;
        std::optional<bool> hearsOfSleep;
    };
    struct Inquiry;

    [[nodiscard]] QCoro::Task<Answers> ask() const;
    template<typename T>
    static QCoro::Task<void> await(std::shared_ptr<Inquiry> inquiry, std::optional<T> Answers::*answer,
                                   QCoro::Task<T> question);

    /// Nothing where it was shown.
    [[nodiscard]] std::optional<Finding> presentTestAlert();
    [[nodiscard]] QCoro::Task<std::optional<QRect>> testCardPlace() const;
    [[nodiscard]] Finding testAlertFinding(const std::optional<QRect> &place) const;

    [[nodiscard]] bool isTimerRight() const;
    void examineAlerts(DoctorReport &report) const;
    [[nodiscard]] Finding timer(const Answers &answers, Instant now) const;
    [[nodiscard]] Finding surface(const Answers &answers) const;
    [[nodiscard]] Finding sound(const Answers &answers) const;
    void examineAccounts(const Answers &answers, DoctorReport &report) const;
    [[nodiscard]] Finding refreshing(Instant now) const;
    [[nodiscard]] Finding keyring(const Answers &answers) const;
    [[nodiscard]] Finding panel() const;
    void examineShortcuts(DoctorReport &report) const;
    [[nodiscard]] std::optional<Finding> bridge() const;
    void examineBrowser(const Answers &answers, DoctorReport &report) const;
    [[nodiscard]] QString verdict(const DoctorReport &report) const;

    Patient m_patient;
    QTimer m_testAlertEnd { this };
};

} // namespace kestrel
