#pragma once
#include "platform/Screens.h"

namespace kestrel {

/// A Kestrel without a display.
class NullScreens final : public Screens
{
    Q_OBJECT
public:
    using Screens::Screens;

    [[nodiscard]] std::optional<QRect> mainFrame() const override { return {}; }
    [[nodiscard]] std::optional<QRect> mainVisibleFrame() const override { return {}; }
    [[nodiscard]] std::optional<QRect> visibleFrameAt(QPoint /*point*/) const override { return {}; }
    [[nodiscard]] QPoint pointer() const override { return {}; }
};

} // namespace kestrel
