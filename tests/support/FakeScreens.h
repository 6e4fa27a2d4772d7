#pragma once
#include "platform/Screens.h"
#include <QList>

namespace kestrel {

/// Screens that a test sets; the first one is the main one. No frame: no screen.
class FakeScreens final : public Screens
{
    Q_OBJECT
public:
    struct Screen
    {
        QRect frame;
        QRect visibleFrame;
    };

    [[nodiscard]] std::optional<QRect> mainFrame() const override
    {
        return screens.isEmpty() ? std::optional<QRect>() : screens.first().frame;
    }
    [[nodiscard]] std::optional<QRect> mainVisibleFrame() const override
    {
        return screens.isEmpty() ? std::optional<QRect>() : screens.first().visibleFrame;
    }
    [[nodiscard]] std::optional<QRect> visibleFrameAt(QPoint point) const override
    {
        for (const Screen &screen : screens) {
            if (screen.frame.contains(point))
                return screen.visibleFrame;
        }
        return mainVisibleFrame();
    }
    [[nodiscard]] QPoint pointer() const override { return pointerPosition; }

    /// One screen, or none for an empty frame.
    void setFrames(QRect frame, QRect visibleFrame)
    {
        setScreens(frame.isEmpty() ? QList<Screen>() : QList<Screen> { { frame, visibleFrame } });
    }
    void setScreens(const QList<Screen> &all)
    {
        screens = all;
        Q_EMIT changed();
    }

    QList<Screen> screens { { QRect(0, 0, 1920, 1080), QRect(0, 28, 1920, 1052) } };
    QPoint pointerPosition { 1700, 14 };
};

} // namespace kestrel
