#include "ui/Colors.h"
#include <QCoreApplication>
#include <QLocale>
#include <cmath>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr double glassOpacity = 0.86;
constexpr double glassTint = 0.18;
constexpr double darkestStripe = 0.3;

/// By the circle of hues; muted ones have names of their own.
QString colorWord(const QColor &color)
{
    const int hue = color.hsvHue();
    if (color.hsvSaturation() < 60)
        return qtTrId("color.grey");
    if (hue < 45 && color.hsvSaturation() < 110)
        return qtTrId("color.brown");
    if (hue < 10 || hue >= 345)
        return qtTrId("color.red");
    if (hue < 40)
        return qtTrId("color.orange");
    if (hue < 62)
        return qtTrId("color.yellow");
    if (hue < 165)
        return qtTrId("color.green");
    if (hue < 190)
        return qtTrId("color.turquoise");
    if (hue < 236)
        return qtTrId("color.blue");
    return hue < 295 ? qtTrId("color.violet") : qtTrId("color.pink");
}

} // namespace

std::optional<QColor> colorFromHex(const QString &text)
{
    const QString digits = text.startsWith(u'#') ? text.sliced(1) : text;
    const bool isHex = digits.size() == 6 && std::all_of(digits.begin(), digits.end(), [](QChar digit) {
                           return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f')
                               || (digit >= u'A' && digit <= u'F');
                       });
    if (!isHex)
        return {};
    return QColor(QRgb(digits.toUInt(nullptr, 16)));
}

double luminance(const QColor &color)
{
    const QColor rgb = color.toRgb();
    return 0.2126 * double(rgb.redF()) + 0.7152 * double(rgb.greenF()) + 0.0722 * double(rgb.blueF());
}

QColor stripeColor(const std::optional<QString> &hex, const QColor &fallback)
{
    static const QColor neutral = QColor::fromRgbF(0.55F, 0.55F, 0.62F);
    if (const auto own = hex ? colorFromHex(*hex) : std::nullopt)
        return *own;
    return luminance(fallback) >= darkestStripe ? fallback : neutral;
}

const QStringList &calendarPalette()
{
    static const QStringList palette {
        u"#E57373"_s, u"#EF6C5C"_s, u"#F08263"_s, u"#F5A26B"_s, u"#F5C36B"_s, u"#E8D26E"_s, u"#C7D870"_s,
        u"#9CCC65"_s, u"#7CC388"_s, u"#5FB58D"_s, u"#4DB6AC"_s, u"#4DBABF"_s, u"#4DBED1"_s, u"#5DBDE3"_s,
        u"#6CB5E8"_s, u"#7AA8E8"_s, u"#7E97E8"_s, u"#8A8AE0"_s, u"#9C7FD9"_s, u"#AF74CC"_s, u"#BC6FBF"_s,
        u"#C66BAA"_s, u"#D26B95"_s, u"#D86F84"_s, u"#B59273"_s, u"#9E8676"_s, u"#878787"_s, u"#7D8B99"_s,
        u"#6680E5"_s, u"#E5556C"_s, u"#28A66E"_s, u"#D89B2F"_s,
    };
    return palette;
}

QColor mixed(const QColor &base, const QColor &tint, double share)
{
    const auto part = [share](float under, float over) {
        return static_cast<float>(double(under) * (1 - share) + double(over) * share);
    };
    return QColor::fromRgbF(part(base.redF(), tint.redF()), part(base.greenF(), tint.greenF()),
                            part(base.blueF(), tint.blueF()), base.alphaF());
}

QString Colors::name(const QString &hex) const
{
    const QString word = colorWord(hex);
    int number = 0;
    for (const QString &other : calendarPalette()) {
        number += colorWord(other) == word ? 1 : 0;
        if (other == hex)
            break;
    }
    return word + u' ' + QLocale().toString(number);
}

QColor Colors::stripe(const QString &hex, const QColor &fallback) const
{
    return stripeColor(hex, fallback);
}

QColor Colors::swatch(const QString &overrideHex, const QString &googleHex, const QColor &fallback) const
{
    const auto own = colorFromHex(overrideHex);
    return own ? *own : colorFromHex(googleHex).value_or(fallback);
}

QColor Colors::glass(const QColor &base, const QColor &tint, bool tinted, bool allowed) const
{
    const QColor filling = tinted ? mixed(base, tint, glassTint) : base;
    return allowed ? faded(filling, glassOpacity) : filling;
}

QColor Colors::inkOn(const QColor &ground) const
{
    // WCAG 2.1: where both have the same contrast
    constexpr double middle = 0.179;
    const auto linear = [](float part) {
        return part <= 0.03928F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
    };
    const QColor light =
        QColor::fromRgbF(linear(ground.redF()), linear(ground.greenF()), linear(ground.blueF()));
    return luminance(light) > middle ? Qt::black : Qt::white;
}

QColor Colors::faded(const QColor &color, double opacity) const
{
    QColor result = color;
    result.setAlphaF(static_cast<float>(opacity));
    return result;
}

} // namespace kestrel
