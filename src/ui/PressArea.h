#pragma once
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>
#include <optional>

namespace kestrel {

/// What can be pressed, by pointer, finger, space bar and screen reader: a background as large as itself and,
/// within the paddings, its content. Both are items that it is given for good. The buttons of Qt Quick
/// Templates do that too, but bring along a library and types that cost 3 MB and some milliseconds of the
/// first window.
class PressArea : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *background READ background WRITE setBackground NOTIFY backgroundChanged)
    Q_PROPERTY(QQuickItem *contentItem READ contentItem WRITE setContentItem NOTIFY contentItemChanged)
    /// Of the sides that have none of their own.
    Q_PROPERTY(qreal padding READ padding WRITE setPadding NOTIFY paddingChanged)
    Q_PROPERTY(qreal leftPadding READ leftPadding WRITE setLeftPadding NOTIFY leftPaddingChanged)
    Q_PROPERTY(qreal rightPadding READ rightPadding WRITE setRightPadding NOTIFY rightPaddingChanged)
    Q_PROPERTY(qreal topPadding READ topPadding WRITE setTopPadding NOTIFY topPaddingChanged)
    Q_PROPERTY(qreal bottomPadding READ bottomPadding WRITE setBottomPadding NOTIFY bottomPaddingChanged)
    Q_PROPERTY(qreal implicitContentWidth READ implicitContentWidth NOTIFY implicitContentWidthChanged)
    Q_PROPERTY(qreal implicitContentHeight READ implicitContentHeight NOTIFY implicitContentHeightChanged)
    Q_PROPERTY(bool hovered READ isHovered NOTIFY hoveredChanged)
    /// While it would be a click to let go.
    Q_PROPERTY(bool pressed READ isPressed NOTIFY pressedChanged)
    /// It has the focus, and got it from the keyboard.
    Q_PROPERTY(bool visualFocus READ hasVisualFocus NOTIFY visualFocusChanged)
public:
    explicit PressArea(QQuickItem *parent = nullptr);

    [[nodiscard]] QQuickItem *background() const { return m_background; }
    void setBackground(QQuickItem *background);
    [[nodiscard]] QQuickItem *contentItem() const { return m_content; }
    void setContentItem(QQuickItem *content);
    [[nodiscard]] qreal padding() const { return m_padding; }
    void setPadding(qreal padding);
    [[nodiscard]] qreal leftPadding() const { return m_left.value_or(m_padding); }
    void setLeftPadding(qreal padding) { setSide(m_left, padding, &PressArea::leftPaddingChanged); }
    [[nodiscard]] qreal rightPadding() const { return m_right.value_or(m_padding); }
    void setRightPadding(qreal padding) { setSide(m_right, padding, &PressArea::rightPaddingChanged); }
    [[nodiscard]] qreal topPadding() const { return m_top.value_or(m_padding); }
    void setTopPadding(qreal padding) { setSide(m_top, padding, &PressArea::topPaddingChanged); }
    [[nodiscard]] qreal bottomPadding() const { return m_bottom.value_or(m_padding); }
    void setBottomPadding(qreal padding) { setSide(m_bottom, padding, &PressArea::bottomPaddingChanged); }
    [[nodiscard]] qreal implicitContentWidth() const { return m_content ? m_content->implicitWidth() : 0; }
    [[nodiscard]] qreal implicitContentHeight() const { return m_content ? m_content->implicitHeight() : 0; }
    [[nodiscard]] bool isHovered() const { return m_isHovered; }
    [[nodiscard]] bool isPressed() const { return m_isPressed; }
    [[nodiscard]] bool hasVisualFocus() const { return m_hasVisualFocus; }

    /// What a screen reader presses where the element itself answers to no action; Qt looks for it by its
    /// name.
    Q_INVOKABLE void accessiblePressAction();

Q_SIGNALS:
    void clicked();
    void backgroundChanged();
    void contentItemChanged();
    void paddingChanged();
    void leftPaddingChanged();
    void rightPaddingChanged();
    void topPaddingChanged();
    void bottomPaddingChanged();
    void implicitContentWidthChanged();
    void implicitContentHeightChanged();
    void hoveredChanged();
    void pressedChanged();
    void visualFocusChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void hoverEnterEvent(QHoverEvent *event) override;
    void hoverLeaveEvent(QHoverEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void setSide(std::optional<qreal> &side, qreal padding, void (PressArea::*changed)());
    void place();
    void setHovered(bool hovered);
    void setPressed(bool pressed);
    void setVisualFocus(bool visualFocus);

    QPointer<QQuickItem> m_background;
    QPointer<QQuickItem> m_content;
    qreal m_padding = 0;
    std::optional<qreal> m_left;
    std::optional<qreal> m_right;
    std::optional<qreal> m_top;
    std::optional<qreal> m_bottom;
    bool m_isHovered = false;
    bool m_isPressed = false;
    bool m_isHeldByKey = false; ///< pressed by the space bar
    bool m_hasVisualFocus = false;
};

} // namespace kestrel
