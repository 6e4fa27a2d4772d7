#pragma once
#include "platform/Appearance.h"
#include <QColor>
#include <QFont>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace kestrel {

/// The colours and faces of the moment, for QML as a singleton. Follows the desktop live. Owned by app/,
/// which makes it before the first window and tells it whether the person's own settings allow glass; the
/// appearance outlives it.
class Theme final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed)
    Q_PROPERTY(QColor card READ card NOTIFY changed)
    Q_PROPERTY(QColor hairline READ hairline NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondaryText READ secondaryText NOTIFY changed)
    Q_PROPERTY(QColor tertiaryText READ tertiaryText NOTIFY changed)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)
    Q_PROPERTY(QColor meetingNow READ meetingNow NOTIFY changed)
    Q_PROPERTY(QColor meetingSoon READ meetingSoon NOTIFY changed)
    Q_PROPERTY(QColor meetingLater READ meetingLater NOTIFY changed)
    Q_PROPERTY(QColor joinGreen READ joinGreen CONSTANT)
    Q_PROPERTY(QColor success READ success NOTIFY changed)
    Q_PROPERTY(QColor error READ error NOTIFY changed)
    Q_PROPERTY(bool glassAllowed READ glassAllowed NOTIFY changed)
    Q_PROPERTY(bool composited READ isComposited NOTIFY changed)
    Q_PROPERTY(bool motionAllowed READ motionAllowed NOTIFY changed)
    Q_PROPERTY(QString family READ family CONSTANT)
    Q_PROPERTY(QString roundedFamily READ roundedFamily CONSTANT)
public:
    explicit Theme(const Appearance &appearance, QObject *parent = nullptr);
    ~Theme() override;

    /// The one that was made last; QML never makes one.
    static Theme *create(QQmlEngine *engine, QJSEngine *scripts);

    [[nodiscard]] bool isDark() const;
    [[nodiscard]] QColor surface() const;
    [[nodiscard]] QColor card() const;
    [[nodiscard]] QColor hairline() const;
    [[nodiscard]] QColor text() const;
    [[nodiscard]] QColor secondaryText() const;
    [[nodiscard]] QColor tertiaryText() const;
    /// The desktop's, else ours.
    [[nodiscard]] QColor accent() const;
    [[nodiscard]] QColor meetingNow() const;
    [[nodiscard]] QColor meetingSoon() const;
    [[nodiscard]] QColor meetingLater() const;
    [[nodiscard]] QColor joinGreen() const;
    [[nodiscard]] QColor success() const;
    [[nodiscard]] QColor error() const;

    /// Surfaces may let shine through what is behind them: neither person nor desktop asks for solid ones,
    /// and a compositor runs.
    [[nodiscard]] bool glassAllowed() const;
    /// The person's own wish for solid surfaces.
    void setReducesTransparency(bool reduces);
    /// Windows may be see-through at all: without it there are neither shadows nor rounded windows.
    [[nodiscard]] bool isComposited() const;
    [[nodiscard]] bool motionAllowed() const;

    /// The desktop's interface font.
    [[nodiscard]] static QString family();
    /// An installed rounded family, else the interface font.
    [[nodiscard]] static QString roundedFamily();
    /// How wide `text` gets at most when other digits stand in the places of its digits.
    [[nodiscard]] Q_INVOKABLE qreal widthForAnyDigits(const QString &text, const QFont &font) const;

Q_SIGNALS:
    void changed();

private:
    const Appearance &m_appearance;
    bool m_reducesTransparency = false;
};

} // namespace kestrel
