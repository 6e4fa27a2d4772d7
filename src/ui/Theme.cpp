#include "ui/Theme.h"
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QJSEngine>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {
Theme *current = nullptr;
}

Theme::Theme(const Appearance &appearance, QObject *parent)
    : QObject(parent)
    , m_appearance(appearance)
{
    connect(&appearance, &Appearance::changed, this, &Theme::changed);
    current = this;
}

Theme::~Theme()
{
    if (current == this)
        current = nullptr;
}

Theme *Theme::create(QQmlEngine * /*engine*/, QJSEngine * /*scripts*/)
{
    Q_ASSERT(current);
    QJSEngine::setObjectOwnership(current, QJSEngine::CppOwnership);
    return current;
}

bool Theme::isDark() const
{
    return m_appearance.isDark();
}

QColor Theme::surface() const
{
    return isDark() ? QColor(0x16, 0x17, 0x1c) : QColor(0xf7, 0xf7, 0xfb);
}

QColor Theme::card() const
{
    return isDark() ? QColor(0x1f, 0x20, 0x27) : QColor(0xff, 0xff, 0xff);
}

QColor Theme::hairline() const
{
    return isDark() ? QColor::fromRgbF(1, 1, 1, 0.12F) : QColor::fromRgbF(0, 0, 0, 0.1F);
}

QColor Theme::text() const
{
    return isDark() ? QColor(0xf2, 0xf2, 0xf5) : QColor(0x1c, 0x1c, 0x20);
}

QColor Theme::secondaryText() const
{
    return isDark() ? QColor(0xa9, 0xa9, 0xb2) : QColor(0x56, 0x56, 0x5a);
}

QColor Theme::tertiaryText() const
{
    return isDark() ? QColor(0x8a, 0x8a, 0x94) : QColor(0x6e, 0x6e, 0x76);
}

QColor Theme::accent() const
{
    return m_appearance.accentColor().value_or(isDark() ? QColor(0x9c, 0x88, 0xff)
                                                        : QColor(0x6a, 0x4d, 0xff));
}

QColor Theme::meetingNow() const
{
    return isDark() ? QColor(0xff, 0x6b, 0x60) : QColor(0xd9, 0x2d, 0x20);
}

QColor Theme::meetingSoon() const
{
    return isDark() ? QColor(0xfd, 0xb0, 0x22) : QColor(0xb5, 0x47, 0x08);
}

QColor Theme::meetingLater() const
{
    return isDark() ? QColor(0x84, 0xad, 0xff) : QColor(0x1d, 0x5f, 0xd0);
}

QColor Theme::joinGreen() const
{
    return QColor::fromRgbF(0.1F, 0.72F, 0.45F);
}

QColor Theme::success() const
{
    return isDark() ? QColor(0x4a, 0xd0, 0x8a) : QColor(0x12, 0x7a, 0x4b);
}

QColor Theme::error() const
{
    return meetingNow();
}

bool Theme::glassAllowed() const
{
    return !m_reducesTransparency && !m_appearance.reducesTransparency() && m_appearance.isComposited();
}

void Theme::setReducesTransparency(bool reduces)
{
    if (m_reducesTransparency == reduces)
        return;
    m_reducesTransparency = reduces;
    Q_EMIT changed();
}

bool Theme::isComposited() const
{
    return m_appearance.isComposited();
}

bool Theme::motionAllowed() const
{
    return !m_appearance.reducesMotion();
}

QString Theme::family()
{
    return QGuiApplication::font().family();
}

QString Theme::roundedFamily()
{
    static const QString found = [] {
        const QStringList installed = QFontDatabase::families();
        for (const QString &family : { u"Nunito"_s, u"Quicksand"_s, u"Varela Round"_s }) {
            if (installed.contains(family))
                return family;
        }
        return QString();
    }();
    return found.isEmpty() ? family() : found;
}

qreal Theme::widthForAnyDigits(const QString &text, const QFont &font) const
{
    const QFontMetricsF metrics(font);
    QChar widest = u'0';
    for (QChar digit = u'1'; digit <= u'9'; digit.unicode()++) {
        if (metrics.horizontalAdvance(digit) > metrics.horizontalAdvance(widest))
            widest = digit;
    }
    QString filled = text;
    for (QChar &letter : filled) {
        if (letter >= u'0' && letter <= u'9')
            letter = widest;
    }
    return std::ceil(metrics.horizontalAdvance(filled));
}

} // namespace kestrel
