#pragma once
#include "platform/Appearance.h"
#include "platform/linux/X11Compositor.h"
#include <QDBusMessage>
#include <QMap>
#include <QString>
#include <QVariant>

class QDBusPendingCallWatcher;

namespace kestrel {

/// The settings portal's wishes. Starts light and learns the rest when the portal answers; without one it
/// stays so. The environment variable KESTREL_COLOR_SCHEME ("dark" or "light") stands above what the desktop
/// says. Main thread only.
class PortalAppearance final : public Appearance
{
    Q_OBJECT
public:
    explicit PortalAppearance(QObject *parent = nullptr);

    [[nodiscard]] bool isDark() const override { return m_wishes.isDark; }
    [[nodiscard]] std::optional<QColor> accentColor() const override { return m_wishes.accent; }
    [[nodiscard]] bool reducesTransparency() const override { return m_wishes.reducesTransparency; }
    [[nodiscard]] bool reducesMotion() const override { return m_wishes.reducesMotion; }
    [[nodiscard]] bool isComposited() const override { return m_compositor.isRunning(); }

private:
    struct Wishes
    {
        bool isDark = false;
        std::optional<QColor> accent;
        bool reducesTransparency = false;
        bool reducesMotion = false;

        friend bool operator==(const Wishes &, const Wishes &) = default;
    };

    void ask();
    void learn(QDBusPendingCallWatcher *answer);
    Q_SLOT void onSettingChanged(const QDBusMessage &message);
    void apply();
    [[nodiscard]] Wishes wishes() const;

    X11Compositor m_compositor;
    QString m_override;
    QMap<QString, QVariant> m_settings; ///< by group and key, with a blank between
    Wishes m_wishes;
};

} // namespace kestrel
