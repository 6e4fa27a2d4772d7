// kestrel-icons SOURCE FOLDER: draws the application icon in every size of the icon theme, below FOLDER. It
// runs while Kestrel is built, so that no picture is kept beside its source.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

bool drawIcon(QSvgRenderer &icon, int size, const QString &folder)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    // its ground lies from 6 to 122 of 128; small ones fill their place, with edges on whole pixels
    const qreal margin = size <= 24 ? 0 : std::floor(size * 6 / 128.0);
    const qreal scale = (size - 2 * margin) / 116;
    const qreal corner = margin - 6 * scale;
    icon.render(&painter, QRectF(corner, corner, 128 * scale, 128 * scale));
    painter.end();
    return QDir().mkpath(folder) && image.save(folder + u"/app.kestrel.Kestrel.png"_s);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    QSvgRenderer icon(QString::fromLocal8Bit(argv[1]));
    bool isDone = icon.isValid();
    for (const int size : { 16, 22, 24, 32, 48, 64, 128, 256, 512 })
        isDone =
            isDone && drawIcon(icon, size, u"%1/%2x%2/apps"_s.arg(QString::fromLocal8Bit(argv[2])).arg(size));
    if (!isDone)
        std::fputs("The icon could not be drawn.\n", stderr);
    return isDone ? 0 : 1;
}
