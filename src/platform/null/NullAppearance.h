#pragma once
#include "platform/Appearance.h"

namespace kestrel {

/// A desktop without wishes: light, and everything may move and shine through.
class NullAppearance final : public Appearance
{
    Q_OBJECT
public:
    using Appearance::Appearance;

    [[nodiscard]] bool isDark() const override { return false; }
    [[nodiscard]] std::optional<QColor> accentColor() const override { return {}; }
    [[nodiscard]] bool reducesTransparency() const override { return false; }
    [[nodiscard]] bool reducesMotion() const override { return false; }
    [[nodiscard]] bool isComposited() const override { return true; }
};

} // namespace kestrel
