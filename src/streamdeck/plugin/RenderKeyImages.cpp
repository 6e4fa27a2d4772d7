// kestrel-deck-images FOLDER SYMBOLS DRAWINGS: draws every image that the plug-in's manifest and program
// name. It runs while Kestrel is built, so that no picture is kept beside its source.
#include "platform/TintedSvg.h"
#include "streamdeck/plugin/DeckActions.h"
#include <QDir>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

/// The ground of a key. An absent key has none: it is a dashed outline, so that no state is told by colour
/// alone.
enum class Ground { Plain, Lit, Alarm, End, Brand, Absent };

struct Symbols
{
    QLatin1StringView on;
    QLatin1StringView off = {};
    Ground onGround = Ground::Plain;
    Ground offGround = Ground::Plain;
};

/// Keys that are not here are reactions, each with a coloured drawing of its own.
const QHash<QLatin1StringView, Symbols> symbols {
    { "mute"_L1, { "mic.fill"_L1, "mic.slash"_L1, Ground::Plain, Ground::Alarm } },
    { "camera"_L1, { "video.fill"_L1, "video.slash"_L1, Ground::Plain, Ground::Alarm } },
    { "hand"_L1, { "hand.raised.fill"_L1, "hand.raised"_L1, Ground::Lit, Ground::Plain } },
    { "share"_L1, { "rectangle.on.rectangle.fill"_L1, "rectangle.on.rectangle"_L1, Ground::Lit } },
    { "leave"_L1, { "phone.down.fill"_L1, {}, Ground::End } },
    { "next"_L1, { "chevron.forward.2"_L1, {}, Ground::Brand } },
};

constexpr qreal side = 72; ///< all measures below are of such a key
constexpr QColor bezel { 0x00, 0x00, 0x00 };
constexpr QColor dim { 0x8a, 0x8a, 0x94 };
constexpr QColor white { 0xf2, 0xf2, 0xf5 };

QDir symbolFolder;
QDir drawingFolder;
bool hasFailed = false;

QByteArray read(const QDir &folder, const QString &name)
{
    QFile file(folder.filePath(name + u".svg"_s));
    hasFailed |= !file.open(QIODevice::ReadOnly);
    return file.readAll();
}

QBrush fill(Ground ground)
{
    switch (ground) {
    case Ground::Lit:
        return QColor(0x9c, 0x88, 0xff);
    case Ground::Alarm:
        return QColor(0xff, 0x6b, 0x60);
    case Ground::End:
        return QColor(0xd9, 0x2d, 0x20);
    case Ground::Brand: {
        QLinearGradient gradient(0, 0, side, side);
        gradient.setColorAt(0, QColor(0x7c, 0x5c, 0xff));
        gradient.setColorAt(1, QColor(0x2d, 0xc8, 0xf0));
        return gradient;
    }
    case Ground::Plain:
    case Ground::Absent:
        break;
    }
    return QColor(0x33, 0x34, 0x3f);
}

QColor ink(Ground ground)
{
    switch (ground) {
    case Ground::Lit:
    case Ground::Alarm:
        return { 0x16, 0x17, 0x1c };
    case Ground::Absent:
        return dim;
    case Ground::Plain:
    case Ground::End:
    case Ground::Brand:
        break;
    }
    return white;
}

void paintGround(QPainter &painter, Ground ground)
{
    painter.fillRect(QRectF(0, 0, side, side), bezel);
    if (ground == Ground::Absent) {
        QPen dashes(dim, 1.75, Qt::CustomDashLine, Qt::RoundCap);
        dashes.setDashPattern({ 2.4, 3.2 });
        painter.setPen(dashes);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(5, 5, side - 10, side - 10), 15, 15);
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill(ground));
        painter.drawRoundedRect(QRectF(3, 3, side - 6, side - 6), 16, 16);
    }
}

/// Without its colours, and darker: what cannot be pressed now.
void fade(QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            const int gray = qGray(color.rgb()) * 11 / 20;
            image.setPixelColor(x, y, QColor(gray, gray, gray, color.alpha()));
        }
    }
}

QImage drawing(const QByteArray &svg, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(svg).render(&painter);
    return image;
}

QImage keyImage(const DeckAction &action, KeyFace face, int scale)
{
    QImage key(int(side) * scale, int(side) * scale, QImage::Format_RGB32);
    QPainter painter(&key);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(scale, scale);
    const auto found = symbols.constFind(action.image);
    const bool isReaction = found == symbols.constEnd();
    const Symbols row = isReaction ? Symbols {} : *found;
    const bool isOn = face == KeyFace::On || !action.isSwitch();
    const Ground ground = face == KeyFace::Absent ? Ground::Absent : isOn ? row.onGround : row.offGround;
    paintGround(painter, ground);

    const int size = isReaction ? 50 : 46;
    QImage picture;
    if (isReaction) {
        picture = drawing(read(drawingFolder, action.image), size * scale);
        if (face == KeyFace::Absent)
            fade(picture);
    } else {
        // of what is absent nobody knows whether it is on: the plain symbol, without a slash
        const bool showsOn =
            face == KeyFace::Absent ? row.offGround != Ground::Plain || row.off.isEmpty() : isOn;
        picture = tintedSvg(read(symbolFolder, showsOn ? row.on : row.off), QSize(size * scale, size * scale),
                            ink(ground));
    }
    const qreal edge = (side - size) / 2;
    painter.drawImage(QRectF(edge, edge, size, size), picture);
    return key;
}

/// The one-colour drawing beside the action's name in the Stream Deck program's list.
QImage listImage(const DeckAction &action, int size)
{
    const auto found = symbols.constFind(action.image);
    if (found != symbols.constEnd())
        return tintedSvg(read(symbolFolder, found->on), QSize(size, size), white);
    return drawing(read(drawingFolder, action.image), size);
}

QImage programImage(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / side, size / side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill(Ground::Brand));
    painter.drawRoundedRect(QRectF(2, 2, side - 4, side - 4), 16, 16);
    const int symbol = size * 2 / 3;
    painter.resetTransform();
    const qreal edge = (size - symbol) / 2.0;
    painter.drawImage(QPointF(edge, edge),
                      tintedSvg(read(symbolFolder, u"chevron.forward.2"_s), QSize(symbol, symbol), white));
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    const QDir images(QString::fromLocal8Bit(argv[1]));
    symbolFolder.setPath(QString::fromLocal8Bit(argv[2]));
    drawingFolder.setPath(QString::fromLocal8Bit(argv[3]));
    hasFailed |= !images.mkpath(u"."_s);
    const auto save = [&](const QString &name, auto paint) {
        for (const int scale : { 1, 2 })
            hasFailed |= !paint(scale).save(images.filePath(name + (scale == 2 ? u"@2x.png"_s : u".png"_s)));
    };
    for (const DeckAction &action : deckActions()) {
        const QString name(action.image);
        save(name + u"-on"_s, [&](int scale) { return keyImage(action, KeyFace::On, scale); });
        if (action.isSwitch())
            save(name + u"-off"_s, [&](int scale) { return keyImage(action, KeyFace::Off, scale); });
        if (!action.command.isEmpty())
            save(name + u"-absent"_s, [&](int scale) { return keyImage(action, KeyFace::Absent, scale); });
        save(name + u"-list"_s, [&](int scale) { return listImage(action, 20 * scale); });
    }
    save(u"plugin"_s, [](int scale) { return programImage(256 * scale); });
    save(u"category"_s, [](int scale) {
        return tintedSvg(read(symbolFolder, u"chevron.forward.2"_s), QSize(28 * scale, 28 * scale), white);
    });
    if (hasFailed)
        std::fputs("An image could not be drawn or written.\n", stderr);
    return hasFailed;
}
