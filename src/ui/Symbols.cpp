#include "ui/Symbols.h"
#include <QFile>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QByteArray resource(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QByteArray symbolSvg(const QString &name)
{
    return name.isEmpty() ? QByteArray() : resource(u":/kestrel/symbols/"_s + name + u".svg"_s);
}

QByteArray applicationIconSvg()
{
    return resource(u":/kestrel/icons/icon-source.svg"_s);
}

} // namespace kestrel
