#pragma once
#include <QObject>
#include <QPoint>
#include <QRect>
#include <optional>

namespace kestrel {

/// The screens, in device-independent pixels, y growing downwards.
class Screens : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// The screen of the active window, else the primary one; nothing where there is no screen.
    [[nodiscard]] virtual std::optional<QRect> mainFrame() const = 0;
    /// Its geometry without the panels' struts on it.
    [[nodiscard]] virtual std::optional<QRect> mainVisibleFrame() const = 0;
    /// The visible frame of the screen that `point` lies on, or of the nearest one.
    [[nodiscard]] virtual std::optional<QRect> visibleFrameAt(QPoint point) const = 0;
    [[nodiscard]] virtual QPoint pointer() const = 0;

Q_SIGNALS:
    /// A screen came, went or changed, or a panel did.
    void changed();
};

} // namespace kestrel
