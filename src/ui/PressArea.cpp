#include "ui/PressArea.h"
#include <QKeyEvent>
#include <algorithm>
#include <utility>

namespace kestrel {

PressArea::PressArea(QQuickItem *parent)
    : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
}

void PressArea::setBackground(QQuickItem *background)
{
    if (m_background == background)
        return;
    m_background = background;
    if (background) {
        background->setParentItem(this);
        if (background->z() == 0)
            background->setZ(-1);
    }
    place();
    Q_EMIT backgroundChanged();
}

void PressArea::setContentItem(QQuickItem *content)
{
    if (m_content == content)
        return;
    m_content = content;
    if (content) {
        content->setParentItem(this);
        connect(content, &QQuickItem::implicitWidthChanged, this, &PressArea::implicitContentWidthChanged);
        connect(content, &QQuickItem::implicitHeightChanged, this, &PressArea::implicitContentHeightChanged);
    }
    place();
    Q_EMIT contentItemChanged();
    Q_EMIT implicitContentWidthChanged();
    Q_EMIT implicitContentHeightChanged();
}

void PressArea::setPadding(qreal padding)
{
    if (std::exchange(m_padding, padding) == padding)
        return;
    place();
    Q_EMIT paddingChanged();
    // a signal for each side: one may be bound to another
    if (!m_left)
        Q_EMIT leftPaddingChanged();
    if (!m_right)
        Q_EMIT rightPaddingChanged();
    if (!m_top)
        Q_EMIT topPaddingChanged();
    if (!m_bottom)
        Q_EMIT bottomPaddingChanged();
}

void PressArea::setSide(std::optional<qreal> &side, qreal padding, void (PressArea::*changed)())
{
    if (std::exchange(side, padding) == padding)
        return;
    place();
    Q_EMIT(this->*changed)();
}

void PressArea::place()
{
    if (!isComponentComplete())
        return;
    if (m_background)
        m_background->setSize(size());
    if (m_content) {
        m_content->setPosition({ leftPadding(), topPadding() });
        m_content->setSize({ std::max(0.0, width() - leftPadding() - rightPadding()),
                             std::max(0.0, height() - topPadding() - bottomPadding()) });
    }
}

void PressArea::accessiblePressAction()
{
    if (isEnabled())
        Q_EMIT clicked();
}

void PressArea::componentComplete()
{
    QQuickItem::componentComplete();
    place();
}

void PressArea::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        place();
}

void PressArea::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if ((change == ItemVisibleHasChanged || change == ItemEnabledHasChanged) && !value.boolValue) {
        setPressed(false);
        setHovered(false);
    }
}

// What lies below may be hovered as well, as a row is with one of its buttons.
void PressArea::hoverEnterEvent(QHoverEvent *event)
{
    setHovered(true);
    event->ignore();
}

void PressArea::hoverLeaveEvent(QHoverEvent *event)
{
    setHovered(false);
    event->ignore();
}

void PressArea::mousePressEvent(QMouseEvent *event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    setPressed(true);
    event->accept();
}

void PressArea::mouseMoveEvent(QMouseEvent *event)
{
    setPressed(contains(event->position()));
}

void PressArea::mouseReleaseEvent(QMouseEvent *event)
{
    const bool isClick = m_isPressed && contains(event->position());
    setPressed(false);
    if (isClick)
        Q_EMIT clicked();
}

// Its second press has come as one already.
void PressArea::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
}

/// Somebody else has taken the pointer: what is scrolled by it is not clicked.
void PressArea::mouseUngrabEvent()
{
    setPressed(false);
}

void PressArea::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Space)
        return QQuickItem::keyPressEvent(event);
    if (event->isAutoRepeat())
        return;
    setPressed(true);
    m_isHeldByKey = true;
}

void PressArea::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Space)
        return QQuickItem::keyReleaseEvent(event);
    if (event->isAutoRepeat() || !m_isHeldByKey)
        return;
    setPressed(false);
    Q_EMIT clicked();
}

void PressArea::focusInEvent(QFocusEvent *event)
{
    QQuickItem::focusInEvent(event);
    setVisualFocus(event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason
                   || event->reason() == Qt::ShortcutFocusReason);
}

void PressArea::focusOutEvent(QFocusEvent *event)
{
    QQuickItem::focusOutEvent(event);
    setVisualFocus(false);
    setPressed(false);
}

void PressArea::setHovered(bool hovered)
{
    if (std::exchange(m_isHovered, hovered) != hovered)
        Q_EMIT hoveredChanged();
}

void PressArea::setPressed(bool pressed)
{
    m_isHeldByKey = false;
    if (std::exchange(m_isPressed, pressed) != pressed)
        Q_EMIT pressedChanged();
}

void PressArea::setVisualFocus(bool visualFocus)
{
    if (std::exchange(m_hasVisualFocus, visualFocus) != visualFocus)
        Q_EMIT visualFocusChanged();
}

} // namespace kestrel
