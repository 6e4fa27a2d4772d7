#pragma once
#include "menubar/MeetingItem.h"
#include "ui/Theme.h"
#include <QObject>
#include <QPoint>
#include <QQuickView>
#include <QRect>
#include <QSize>
#include <QTimer>
#include <QtQml/qqmlregistration.h>
#include <chrono>
#include <memory>

namespace kestrel {

class FloatingWindows;
class MeetingOpener;
class QuickScene;

/// The card of one meeting: what AlertView shows, and the window it stands in. The meeting stays as it was
/// when the card was made. The window is built when it is first needed and keeps the size it had then. Owned
/// by the presenter; everything it is given outlives it. Main thread only.
class AlertCard final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the presenter makes it")
    Q_PROPERTY(kestrel::MeetingItem *item READ item CONSTANT)
    Q_PROPERTY(bool isShown READ isShown NOTIFY isShownChanged)
public:
    AlertCard(const Meeting &meeting, MeetingOpener &opener, const Clock &clock, QuickScene &scene,
              FloatingWindows &floatingWindows, const Theme &theme);
    ~AlertCard() override;

    [[nodiscard]] MeetingItem *item() { return &m_item; }
    [[nodiscard]] const QString &meetingID() const { return m_item.meeting().id; }

    /// False when the window cannot be drawn; then it never can.
    [[nodiscard]] bool build();
    [[nodiscard]] bool isBuilt() const { return m_view != nullptr; }
    /// With the room for the shadow; empty before the window is built.
    [[nodiscard]] QSize size() const { return m_size; }
    /// What is drawn as the card when its window stands at `origin`.
    [[nodiscard]] QRect bodyAt(QPoint origin) const;
    [[nodiscard]] QPoint position() const;

    /// Since it was last shown: it was really drawn on the screen.
    [[nodiscard]] bool isDrawn() const { return m_isDrawn; }
    [[nodiscard]] bool isShown() const { return m_isShown; }
    /// Maps the built window there, or moves it.
    void showAt(QPoint origin);
    void moveTo(QPoint origin);
    void hide();

    /// Asks for its own dismissal once it has been on the screen that long. Only the first call counts.
    void dismissAfter(std::chrono::seconds delay);

    Q_INVOKABLE void dismiss();
    /// The person drags the card by its background: the window follows the pointer.
    Q_INVOKABLE void beginDrag();
    Q_INVOKABLE void drag();

Q_SIGNALS:
    void isShownChanged();
    void drawn();
    void dismissed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// Where presses count, where blur is, and what of the window is there at all without a compositor.
    void shape();

    MeetingItem m_item;
    QuickScene &m_scene;
    FloatingWindows &m_floatingWindows;
    const Theme &m_theme;
    std::unique_ptr<QQuickView> m_view;
    QSize m_size;
    QTimer m_dismissal;
    QPoint m_pointer;
    QPoint m_grip;
    bool m_isShown = false;
    bool m_isDrawn = false;
};

} // namespace kestrel
