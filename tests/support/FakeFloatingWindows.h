#pragma once
#include "platform/FloatingWindows.h"
#include <QList>
#include <QMap>
#include <QPointer>
#include <utility>

namespace kestrel {

/// Records what was asked for.
class FakeFloatingWindows final : public FloatingWindows
{
    Q_OBJECT
public:
    [[nodiscard]] WindowingCondition condition() const override { return current; }
    [[nodiscard]] bool canPlaceWindows() const override { return placesWindows; }
    void prepare(QWindow &window, Kind kind) override { prepared.append({ &window, kind }); }
    void shown(QWindow &window, Kind kind) override { shownWindows.append({ &window, kind }); }
    void takeFocus(QWindow &window) override { focused.append(&window); }
    void setInputRegion(QWindow &window, const QRegion &region) override
    {
        inputRegions.insert(&window, region);
    }
    void setBlurRegion(QWindow &window, const QRegion &region) override
    {
        blurRegions.insert(&window, region);
    }

    [[nodiscard]] bool canWatchPresses() const override { return hearsPresses; }
    void watchPresses(bool watch) override { isWatching = watch; }

    /// A press somewhere on the screen; nobody hears it while presses are not watched.
    void press(QPoint position)
    {
        if (hearsPresses && isWatching)
            Q_EMIT pressed(position);
    }

    WindowingCondition current { WindowingCondition::System::X11, QStringLiteral("Openbox") };
    bool placesWindows = true;
    bool hearsPresses = true;
    bool isWatching = false;
    QList<std::pair<QPointer<QWindow>, Kind>> prepared;
    QList<std::pair<QPointer<QWindow>, Kind>> shownWindows;
    QList<QPointer<QWindow>> focused;
    QMap<const QWindow *, QRegion> inputRegions;
    QMap<const QWindow *, QRegion> blurRegions;
};

} // namespace kestrel
