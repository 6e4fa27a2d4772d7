#pragma once
#include "base/Clock.h"
#include "model/Meeting.h"
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QStringList>
#include <QVariantAnimation>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel {

class AlertCard;
class FloatingWindows;
class MeetingOpener;
class Notifications;
class Preferences;
class QuickScene;
class Screens;
class SoundPlayer;
class Theme;

/// Puts alert cards on the screen, stacks them, and takes them away again. A card that has no place left
/// waits unmapped until there is one. Where no client can place windows, critical notifications stand for the
/// cards. Owned by app/; what it is given outlives it. Main thread only.
class AlertPresenter final : public QObject
{
    Q_OBJECT
public:
    AlertPresenter(const Preferences &preferences, MeetingOpener &opener, const Clock &clock,
                   QuickScene &scene, FloatingWindows &floatingWindows, const Screens &screens,
                   SoundPlayer &sounds, Notifications &notifications, const Theme &theme);
    ~AlertPresenter() override;

    /// Does nothing when the meeting's card is there already, or when there is no screen. Cards that come in
    /// one turn of the event loop play one sound.
    void present(const Meeting &meeting);
    void dismiss(const QString &meetingID);
    void dismissAll();
    /// Moves every card to its place in the stack, and maps those that have one by now.
    void relayout();

    /// The oldest first, with those that wait.
    [[nodiscard]] QStringList activeIDs() const;
    /// Where the meeting's card stands, once it was drawn there; nothing while it was not, or where notices
    /// stand for cards.
    [[nodiscard]] std::optional<QRect> placeOf(const QString &meetingID) const;

Q_SIGNALS:
    /// A card was drawn for the first time since it was shown.
    void drawn(const QString &meetingID);

private:
    using Cards = std::vector<std::unique_ptr<AlertCard>>;
    struct Move
    {
        AlertCard *card;
        QPoint from;
        QPoint to;
    };

    void presentCard(const Meeting &meeting);
    void presentNotice(const Meeting &meeting);
    AlertCard &append(const Meeting &meeting);
    [[nodiscard]] Cards::iterator find(const QString &meetingID);
    /// The card may be what is calling: it is freed in a later turn.
    void close(std::unique_ptr<AlertCard> card);
    /// Shows the card where it belongs after `offset` pixels of others, or hides it. False: no place there.
    bool place(AlertCard &card, const QRect &frame, int offset, bool isFirst);
    void appear(AlertCard &card, QPoint origin);
    void moveAll(double progress);
    void followPreferences();
    void playSoundOnce();
    void watchPresses();
    void dismissOnPressAt(QPoint position);
    void answerNotice(const QString &meetingID, const QString &action);

    const Preferences &m_preferences;
    MeetingOpener &m_opener;
    const Clock &m_clock;
    QuickScene &m_scene;
    FloatingWindows &m_floatingWindows;
    const Screens &m_screens;
    SoundPlayer &m_sounds;
    Notifications &m_notifications;
    const Theme &m_theme;
    Cards m_active;
    Cards m_closed;
    std::vector<Move> m_moves;
    QVariantAnimation m_animation;
    bool m_stacks;
    bool m_playedSound = false;
    bool m_watchesPresses = false;
};

} // namespace kestrel
