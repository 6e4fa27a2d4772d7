#pragma once
#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <optional>

namespace kestrel {

/// "#4dbed1" or "4DBED1"; nothing for any other text.
[[nodiscard]] std::optional<QColor> colorFromHex(const QString &text);
/// 0 is black, 1 is white.
[[nodiscard]] double luminance(const QColor &color);
/// The calendar's colour, else `fallback` unless it is too dark to be seen, else a neutral grey.
[[nodiscard]] QColor stripeColor(const std::optional<QString> &hex, const QColor &fallback);
/// The 32 colours that a calendar can be given, by eight to a row.
[[nodiscard]] const QStringList &calendarPalette();
/// `tint` laid over `base` with an opacity of `share`, as opaque as `base` is.
[[nodiscard]] QColor mixed(const QColor &base, const QColor &tint, double share);

/// The same for QML. Keeps nothing.
class Colors : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QStringList calendarPalette READ palette CONSTANT)
public:
    using QObject::QObject;

    [[nodiscard]] QStringList palette() const { return calendarPalette(); }
    /// What a screen reader says of a colour of the palette: "Orange 2", the second of them there.
    [[nodiscard]] Q_INVOKABLE QString name(const QString &hex) const;
    /// An empty text is no calendar colour.
    [[nodiscard]] Q_INVOKABLE QColor stripe(const QString &hex, const QColor &fallback) const;
    /// The first of the two that is a colour, else `fallback`.
    [[nodiscard]] Q_INVOKABLE QColor swatch(const QString &overrideHex, const QString &googleHex,
                                            const QColor &fallback) const;
    /// The glass look's filling: `base` with 18 % of `tint` where it is `tinted`, 86 % opaque where glass is
    /// `allowed`.
    [[nodiscard]] Q_INVOKABLE QColor glass(const QColor &base, const QColor &tint, bool tinted,
                                           bool allowed) const;
    /// Black or white, whichever can be read better on `ground`.
    [[nodiscard]] Q_INVOKABLE QColor inkOn(const QColor &ground) const;
    [[nodiscard]] Q_INVOKABLE QColor faded(const QColor &color, double opacity) const;
};

} // namespace kestrel
