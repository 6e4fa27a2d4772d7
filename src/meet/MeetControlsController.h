#pragma once
#include "hotkeys/GlobalHotkey.h"
#include "hotkeys/HotkeyAction.h"
#include "meet/MeetAction.h"
#include "platform/HelperChannel.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel {

class HotkeyDispatcher;
class MeetHUDPresenter;
class MeetState;
class ModalNotice;
class Preferences;
class PreferenceStore;

struct MeetControlsTimes
{
    std::chrono::milliseconds firstPoll { 500 };
    std::chrono::milliseconds pollEvery { 1500 };
    std::chrono::milliseconds pollAfterAction { 200 };
    std::chrono::milliseconds closeAfterLeave { 700 };
};

/// Keeps MeetState up to date by asking the Meet tab, and carries out the Meet actions: for shortcuts, which
/// it registers while it is started, and for whoever dispatches them. Owned by app/; everything it is given
/// outlives it. Main thread only.
class MeetControlsController final : public QObject
{
    Q_OBJECT
public:
    /// `onNoMeetTab` is called when an action finds no Meet tab.
    MeetControlsController(const Preferences &preferences, MeetState &state, HelperChannel &helper,
                           HotkeyDispatcher &dispatcher, MeetHUDPresenter &hud, ModalNotice &notice,
                           PreferenceStore &store, std::function<void()> onNoMeetTab,
                           MeetControlsTimes times = {});
    ~MeetControlsController() override;

    /// Registers the shortcuts as the preferences have them now, and asks for the state from now on. May be
    /// called again at any time.
    void start();
    /// Takes the shortcuts back and asks no more. An answer that is still under way is applied when it comes.
    void stop();

    /// Works also while stopped.
    void dispatch(HotkeyAction action);
    void fire(const MeetAction &action);

    /// Runs a script in the Meet tab; a helper that cannot be reached is an error as any other.
    [[nodiscard]] QCoro::Task<HelperScriptReply> runMeetScript(QString js, bool activate);
    void closeMeetTab();

private:
    void unregisterHotkeys();
    [[nodiscard]] QCoro::Task<void> perform(MeetAction action);
    void finish(const MeetAction &action, const HelperScriptReply &reply);
    [[nodiscard]] QCoro::Task<void> reportBrowserSetting(QString error);

    void poll();
    [[nodiscard]] QCoro::Task<void> pollOnce();
    void pollAfterAction();
    void applyPoll(const HelperScriptReply &reply);

    const Preferences &m_preferences;
    MeetState &m_state;
    HelperChannel &m_helper;
    HotkeyDispatcher &m_dispatcher;
    MeetHUDPresenter &m_hud;
    ModalNotice &m_notice;
    PreferenceStore &m_store;
    std::function<void()> m_onNoMeetTab;
    MeetControlsTimes m_times;
    std::vector<std::unique_ptr<GlobalHotkey>> m_hotkeys;
    QTimer m_pollTimer;
    QString m_unreachable; ///< why the helper cannot be had, as it was logged; empty while it can
    std::optional<QString> m_pollError; ///< the last poll's, as it was logged
    bool m_isPolling = false;
    bool m_pollsAgain = false; ///< an action came after the poll that is under way
};

} // namespace kestrel
