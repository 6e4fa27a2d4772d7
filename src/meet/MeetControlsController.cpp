#include "meet/MeetControlsController.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "meet/MeetHUDContent.h"
#include "meet/MeetHUDPresenter.h"
#include "meet/MeetState.h"
#include "meet/MeetStateJSON.h"
#include "meet/protocol/MeetTabMarker.h"
#include "meet/protocol/StateScript.h"
#include "platform/ModalNotice.h"
#include "platform/PreferenceStore.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>
#include <QPointer>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString noticeShownKey = u"MeetControls.chromeFlagAlertShown"_s;

QCoro::Task<void> closeTab(HelperChannel &helper)
{
    const auto reply = co_await helper.closeChromeTab(meetTabMarker);
    if (!reply) {
        if (reply.error().kind != HelperError::Kind::NotOurProtocol)
            qCCritical(lcApp).noquote() << "close tab XPC error:" << errorForLog(reply.error().description);
    } else if (reply->error) {
        qCCritical(lcApp).noquote() << "close Meet tab failed:" << errorForLog(*reply->error);
    } else if (!reply->ok) {
        qCInfo(lcApp) << "close Meet tab: no matching tab";
    }
}

/// The browser does not let scripts run in pages until the person has allowed it.
bool meansScriptsAreOff(const QString &error)
{
    const QString text = error.toLower();
    const auto phrases = { u"javascript through applescript"_s, u"javascript from apple events"_s,
                           u"javascript through apple events"_s, u"allow user scripts is off"_s };
    return std::ranges::any_of(phrases, [&](const QString &phrase) { return text.contains(phrase); });
}

} // namespace

MeetControlsController::MeetControlsController(const Preferences &preferences, MeetState &state,
                                               HelperChannel &helper, HotkeyDispatcher &dispatcher,
                                               MeetHUDPresenter &hud, ModalNotice &notice,
                                               PreferenceStore &store, std::function<void()> onNoMeetTab,
                                               MeetControlsTimes times)
    : m_preferences(preferences)
    , m_state(state)
    , m_helper(helper)
    , m_dispatcher(dispatcher)
    , m_hud(hud)
    , m_notice(notice)
    , m_store(store)
    , m_onNoMeetTab(std::move(onNoMeetTab))
    , m_times(times)
{
    m_pollTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pollTimer, &QTimer::timeout, this, [this] {
        if (m_pollTimer.intervalAsDuration() != m_times.pollEvery)
            m_pollTimer.setInterval(m_times.pollEvery);
        poll();
    });
}

MeetControlsController::~MeetControlsController()
{
    unregisterHotkeys();
}

void MeetControlsController::start()
{
    unregisterHotkeys();
    for (const MeetAction &action : meetActions()) {
        const Hotkey chord = m_preferences.hotkey(action.preference);
        if (chord.isNone())
            continue;
        m_hotkeys.push_back(std::make_unique<GlobalHotkey>(
            m_dispatcher, u"Meet:"_s + action.label, chord.keyCode, chord.modifiers,
            row(action.preference).identifier, [self = QPointer(this), &action] {
                if (self)
                    self->fire(action);
            }));
        m_hotkeys.back()->registerHotkey();
    }
    m_pollTimer.start(m_times.firstPoll);
}

void MeetControlsController::stop()
{
    unregisterHotkeys();
    m_pollTimer.stop();
    m_pollsAgain = false;
    m_state.setInMeeting(false);
}

void MeetControlsController::unregisterHotkeys()
{
    for (const auto &hotkey : m_hotkeys)
        hotkey->unregisterHotkey();
    m_hotkeys.clear();
}

void MeetControlsController::dispatch(HotkeyAction action)
{
    const auto actions = meetActions();
    const auto found = std::ranges::find(actions, action, &MeetAction::preference);
    if (found == actions.end())
        qCInfo(lcApp).noquote() << "dispatch: no MeetAction for" << row(action).rawValue;
    else
        fire(*found);
}

void MeetControlsController::fire(const MeetAction &action)
{
    qCInfo(lcApp).noquote() << "Meet hotkey fired:" << action.label;
    startTask("Meet action", perform(action));
}

QCoro::Task<void> MeetControlsController::perform(MeetAction action)
{
    const QPointer self(this);
    const HelperScriptReply reply = co_await runMeetScript(action.js, action.activate);
    if (!self)
        co_return;
    if (reply.error) {
        qCCritical(lcApp).noquote().nospace()
            << "Meet " << action.label << " error: " << errorForLog(*reply.error);
        co_await reportBrowserSetting(*reply.error);
    } else if (reply.ok) {
        finish(action, reply);
    } else {
        qCInfo(lcApp).noquote().nospace() << "Meet " << action.label << ": no Meet tab — opening popover";
        if (m_onNoMeetTab)
            m_onNoMeetTab();
    }
}

void MeetControlsController::finish(const MeetAction &action, const HelperScriptReply &reply)
{
    qCInfo(lcApp).noquote().nospace()
        << "Meet " << action.label << " result=" << errorForLog(reply.result.value_or(u"<nil>"_s));
    const QString result = reply.result.value_or(QString());
    const QString before = result.startsWith("ok:"_L1) ? result.sliced(3) : QString();
    const MeetHUDContent content = hudContent(action.preference, before);
    if (content != MeetHUDContent())
        m_hud.show(content.symbol, content.emoji);
    QTimer::singleShot(m_times.pollAfterAction, this, &MeetControlsController::pollAfterAction);
    // whether or not a leave button was found: its page asks whether to go back in
    if (action.preference == HotkeyAction::meetLeave)
        QTimer::singleShot(m_times.closeAfterLeave, this, &MeetControlsController::closeMeetTab);
}

QCoro::Task<void> MeetControlsController::reportBrowserSetting(QString error)
{
    if (!meansScriptsAreOff(error) || m_store.boolean(noticeShownKey).value_or(false))
        co_return;
    m_store.setBoolean(noticeShownKey, true);
    co_await m_notice.ask({ qtTrId("meet_controls.chrome_flag.title"),
                            qtTrId("meet_controls.chrome_flag.message"),
                            { qtTrId("meet_controls.chrome_flag.ok") } });
}

QCoro::Task<HelperScriptReply> MeetControlsController::runMeetScript(QString js, bool activate)
{
    const QPointer self(this);
    auto answer = co_await m_helper.executeJSInChromeTab(meetTabMarker, js, activate);
    if (answer) {
        if (self)
            m_unreachable.clear();
        co_return *std::move(answer);
    }
    const bool isStranger = answer.error().kind == HelperError::Kind::NotOurProtocol;
    const QString trouble = isStranger
        ? u"Meet XPC: proxy cast failed"_s
        : u"Meet XPC connection failed: "_s + errorForLog(answer.error().description);
    // said when it begins, not at every poll
    if (self && std::exchange(m_unreachable, trouble) != trouble)
        qCCritical(lcApp).noquote() << trouble;
    co_return HelperScriptReply { false,
                                  {},
                                  isStranger ? u"proxy cast failed"_s : u"XPC connection failed"_s };
}

void MeetControlsController::closeMeetTab()
{
    startTask("close the Meet tab", closeTab(m_helper));
}

void MeetControlsController::poll()
{
    // a browser that hangs answers late or never: what waits for it shares that one answer
    if (!m_isPolling)
        startTask("Meet poll", pollOnce());
}

QCoro::Task<void> MeetControlsController::pollOnce()
{
    const QPointer self(this);
    m_isPolling = true;
    const HelperScriptReply reply = co_await runMeetScript(stateScript.toString(), false);
    if (!self)
        co_return;
    m_isPolling = false;
    applyPoll(reply);
    if (std::exchange(m_pollsAgain, false))
        poll();
}

void MeetControlsController::pollAfterAction()
{
    if (!m_pollTimer.isActive())
        return; // stopped: nobody would correct later what it says
    if (m_isPolling)
        m_pollsAgain = true; // its answer may be from before the action
    else
        poll();
}

void MeetControlsController::applyPoll(const HelperScriptReply &reply)
{
    if (reply.ok && reply.result) {
        if (const auto json = decodeMeetState(reply.result->toUtf8())) {
            m_pollError.reset();
            apply(*json, m_state);
            return;
        }
    }
    if (reply.error && m_pollError != reply.error)
        qCCritical(lcApp).noquote() << "poll failed:" << errorForLog(*reply.error);
    m_pollError = reply.error;
    m_state.setInMeeting(false);
}

} // namespace kestrel
