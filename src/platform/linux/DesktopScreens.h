#pragma once
#include "platform/Screens.h"
#include <QAbstractNativeEventFilter>
#include <QHash>
#include <QList>

class QScreen;

namespace kestrel {

/// Qt's screens, and what the panels of an X11 desktop leave of them. The panels are read when the window
/// manager says that a window came or went or that the work area changed, never by polling. Made after the
/// QGuiApplication, lives no longer than it. Main thread only.
class DesktopScreens final : public Screens, private QAbstractNativeEventFilter
{
    Q_OBJECT
public:
    explicit DesktopScreens(QObject *parent = nullptr);
    ~DesktopScreens() override;

    [[nodiscard]] std::optional<QRect> mainFrame() const override;
    [[nodiscard]] std::optional<QRect> mainVisibleFrame() const override;
    [[nodiscard]] std::optional<QRect> visibleFrameAt(QPoint point) const override;
    [[nodiscard]] QPoint pointer() const override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void follow(QScreen *screen);
    /// Reads again in a later turn, once for all that happens until then.
    void readLater();
    void read();
    [[nodiscard]] QScreen *mainScreen() const;
    [[nodiscard]] QRect visibleFrame(const QScreen &screen) const;

    struct Frames
    {
        QRect frame;
        QRect visibleFrame;

        friend bool operator==(const Frames &, const Frames &) = default;
    };
    [[nodiscard]] QHash<const QScreen *, Frames> readFrames() const;

    QHash<const QScreen *, Frames> m_frames;
    QList<quint32> m_tellingProperties;
    bool m_isReadingLater = false;
};

} // namespace kestrel
