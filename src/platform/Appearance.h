#pragma once
#include <QColor>
#include <QObject>
#include <optional>

namespace kestrel {

/// What the desktop says about how things should look. All of it changes live.
class Appearance : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual bool isDark() const = 0;
    /// Nothing where the desktop names none.
    [[nodiscard]] virtual std::optional<QColor> accentColor() const = 0;
    /// The desktop asks for more contrast, which for us means surfaces that nothing shines through.
    [[nodiscard]] virtual bool reducesTransparency() const = 0;
    [[nodiscard]] virtual bool reducesMotion() const = 0;
    /// A compositor runs: translucent windows show what is behind them.
    [[nodiscard]] virtual bool isComposited() const = 0;

Q_SIGNALS:
    void changed();
};

} // namespace kestrel
