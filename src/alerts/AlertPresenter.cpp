#include "alerts/AlertPresenter.h"
#include "alerts/AlertCard.h"
#include "alerts/CardPlacement.h"
#include "base/Log.h"
#include "menubar/MeetingOpener.h"
#include "platform/FloatingWindows.h"
#include "platform/Notifications.h"
#include "platform/Screens.h"
#include "platform/SoundPlayer.h"
#include "preferences/Preferences.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <algorithm>
#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString joinAction = u"join"_s;
const QString dismissAction = u"dismiss"_s;

bool isShown(const std::unique_ptr<AlertCard> &card)
{
    return card->isShown();
}

} // namespace

AlertPresenter::AlertPresenter(const Preferences &preferences, MeetingOpener &opener, const Clock &clock,
                               QuickScene &scene, FloatingWindows &floatingWindows, const Screens &screens,
                               SoundPlayer &sounds, Notifications &notifications, const Theme &theme)
    : m_preferences(preferences)
    , m_opener(opener)
    , m_clock(clock)
    , m_scene(scene)
    , m_floatingWindows(floatingWindows)
    , m_screens(screens)
    , m_sounds(sounds)
    , m_notifications(notifications)
    , m_theme(theme)
    , m_stacks(preferences.stackSimultaneousAlerts())
{
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setDuration(250);
    m_animation.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { moveAll(value.toDouble()); });

    connect(&screens, &Screens::changed, this, &AlertPresenter::relayout);
    connect(&preferences, &Preferences::changed, this, &AlertPresenter::followPreferences);
    connect(&floatingWindows, &FloatingWindows::pressed, this, &AlertPresenter::dismissOnPressAt);
    connect(&notifications, &Notifications::actionChosen, this, &AlertPresenter::answerNotice);
    connect(&notifications, &Notifications::closed, this, &AlertPresenter::dismiss);
}

AlertPresenter::~AlertPresenter() = default;

QStringList AlertPresenter::activeIDs() const
{
    QStringList ids;
    for (const auto &card : m_active)
        ids.append(card->meetingID());
    return ids;
}

std::optional<QRect> AlertPresenter::placeOf(const QString &meetingID) const
{
    const auto card =
        std::ranges::find(m_active, meetingID, [](const auto &each) { return each->meetingID(); });
    if (card == m_active.end() || !(*card)->isShown() || !(*card)->isDrawn())
        return {};
    return (*card)->bodyAt((*card)->position());
}

void AlertPresenter::present(const Meeting &meeting)
{
    if (find(meeting.id) != m_active.end())
        return;
    const bool asCard = m_floatingWindows.canPlaceWindows();
    if (!m_screens.mainVisibleFrame())
        return;
    if (asCard)
        presentCard(meeting);
    else
        presentNotice(meeting);
    if (m_preferences.playSoundOnAlert())
        playSoundOnce();
    qCInfo(lcAlerts).noquote().nospace() << "Presented alert for meeting id=" << meeting.id;
}

void AlertPresenter::presentCard(const Meeting &meeting)
{
    const bool othersHavePlaces = std::ranges::all_of(m_active, isShown);
    int offset = 0;
    for (const auto &card : m_active)
        offset += card->size().height() + cardSpacing;
    AlertCard &card = append(meeting);
    if (!m_stacks)
        relayout();
    else if (othersHavePlaces)
        place(card, *m_screens.mainVisibleFrame(), offset, m_active.size() == 1);
    watchPresses();
}

void AlertPresenter::presentNotice(const Meeting &meeting)
{
    AlertCard &card = append(meeting);
    Notifications::Notice notice;
    notice.key = meeting.id;
    notice.title = card.item()->title();
    notice.text = card.item()->startText();
    if (!card.item()->location().isEmpty())
        notice.text += u"\n"_s + card.item()->location();
    if (card.item()->canJoin())
        notice.actions.append({ joinAction, card.item()->joinText() });
    notice.actions.append({ dismissAction, qtTrId("alert.dismiss") });
    notice.isCritical = true;
    if (const qint64 seconds = m_preferences.autoDismissSeconds(); seconds >= 1)
        card.dismissAfter(std::chrono::seconds(seconds));
    m_notifications.show(notice);
}

void AlertPresenter::answerNotice(const QString &meetingID, const QString &action)
{
    const auto card = find(meetingID);
    if (card == m_active.end())
        return;
    if (action == joinAction)
        (*card)->item()->join();
    else if (action == dismissAction)
        dismiss(meetingID);
}

AlertCard &AlertPresenter::append(const Meeting &meeting)
{
    auto card = std::make_unique<AlertCard>(meeting, m_opener, m_clock, m_scene, m_floatingWindows, m_theme);
    connect(card.get(), &AlertCard::dismissed, this, [this, id = meeting.id] { dismiss(id); });
    connect(card.get(), &AlertCard::drawn, this, [this, id = meeting.id] { Q_EMIT drawn(id); });
    return *m_active.emplace_back(std::move(card));
}

AlertPresenter::Cards::iterator AlertPresenter::find(const QString &meetingID)
{
    return std::ranges::find(m_active, meetingID, [](const auto &card) { return card->meetingID(); });
}

void AlertPresenter::dismiss(const QString &meetingID)
{
    const auto found = find(meetingID);
    if (found == m_active.end())
        return;
    auto card = std::move(*found);
    m_active.erase(found);
    close(std::move(card));
    relayout();
}

void AlertPresenter::dismissAll()
{
    for (auto &card : std::exchange(m_active, {}))
        close(std::move(card));
    watchPresses();
}

void AlertPresenter::close(std::unique_ptr<AlertCard> card)
{
    std::erase_if(m_moves, [&](const Move &move) { return move.card == card.get(); });
    card->disconnect(this);
    card->hide();
    if (!m_floatingWindows.canPlaceWindows())
        m_notifications.close(card->meetingID());
    m_closed.push_back(std::move(card));
    QMetaObject::invokeMethod(this, [this] { m_closed.clear(); }, Qt::QueuedConnection);
}

void AlertPresenter::relayout()
{
    if (!m_floatingWindows.canPlaceWindows())
        return;
    m_animation.stop();
    m_moves.clear();
    const auto frame = m_screens.mainVisibleFrame();
    int offset = 0;
    bool isFirst = true;
    bool hasRoom = frame.has_value();
    bool hasBuilt = false;
    for (const auto &card : m_active) {
        if (!m_stacks && card != m_active.back()) {
            card->hide();
            continue;
        }
        // one new window a turn, so that those that move do not stop for several
        if (hasRoom && !card->isBuilt() && std::exchange(hasBuilt, true)) {
            QMetaObject::invokeMethod(this, &AlertPresenter::relayout, Qt::QueuedConnection);
            hasRoom = false;
        }
        hasRoom = hasRoom && place(*card, *frame, offset, std::exchange(isFirst, false));
        if (!hasRoom)
            card->hide();
        offset += card->size().height() + cardSpacing;
    }
    if (!m_moves.empty())
        m_animation.start();
    watchPresses();
}

bool AlertPresenter::place(AlertCard &card, const QRect &frame, int offset, bool isFirst)
{
    if (!card.build())
        return true;
    const QPoint origin = cardOrigin(m_preferences.screenPosition(), frame, card.size(), offset);
    // on a screen that is too small for any, one is shown all the same
    if (!isFirst && !frame.contains(card.bodyAt(origin)))
        return false;
    if (!card.isShown())
        appear(card, origin);
    else if (!m_theme.motionAllowed())
        card.moveTo(origin);
    else if (card.position() != origin)
        m_moves.push_back({ &card, card.position(), origin });
    return true;
}

void AlertPresenter::appear(AlertCard &card, QPoint origin)
{
    card.showAt(origin);
    if (const qint64 seconds = m_preferences.autoDismissSeconds(); seconds >= 1)
        card.dismissAfter(std::chrono::seconds(seconds));
}

void AlertPresenter::moveAll(double progress)
{
    for (const Move &move : m_moves)
        move.card->moveTo(move.from + (QPointF(move.to - move.from) * progress).toPoint());
}

void AlertPresenter::followPreferences()
{
    watchPresses();
    // the other ones count for the next card or move
    const bool stacks = m_preferences.stackSimultaneousAlerts();
    if (stacks != std::exchange(m_stacks, stacks))
        relayout();
}

void AlertPresenter::playSoundOnce()
{
    if (std::exchange(m_playedSound, true))
        return;
    m_sounds.play(Preferences::rawValue(m_preferences.alertSound()));
    QMetaObject::invokeMethod(this, [this] { m_playedSound = false; }, Qt::QueuedConnection);
}

void AlertPresenter::watchPresses()
{
    const bool watches = m_preferences.clickOutsideToDismiss() && m_floatingWindows.canWatchPresses()
        && std::ranges::any_of(m_active, isShown);
    if (watches == std::exchange(m_watchesPresses, watches))
        return;
    m_floatingWindows.watchPresses(watches);
}

void AlertPresenter::dismissOnPressAt(QPoint position)
{
    if (!m_watchesPresses)
        return;
    const auto isHit = [position](const auto &card) {
        return card->isShown() && card->bodyAt(card->position()).contains(position);
    };
    if (std::ranges::any_of(m_active, isHit))
        return;
    const auto visible = std::ranges::stable_partition(m_active, std::not_fn(isShown));
    for (auto &card : visible)
        close(std::move(card));
    m_active.erase(visible.begin(), visible.end());
    relayout();
}

} // namespace kestrel
