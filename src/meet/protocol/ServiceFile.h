#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>

namespace kestrel {

/// What a session bus reads to know how the service `name` is started; nothing for a command that it cannot
/// be told.
[[nodiscard]] inline QByteArray serviceFile(const QString &name, const QStringList &command)
{
    // Bus daemons split Exec like a shell. Some read backslashes as escapes before they do, and some do not,
    // so that quoting uses none.
    QStringList words;
    for (QString word : command)
        words += u'\'' + word.replace(u'\'', QLatin1StringView("'\"'\"'")) + u'\'';
    const QString exec = words.join(u' ').replace(u'\\', QLatin1StringView("\\\\"));
    if (exec.contains(u'\n'))
        return {};
    return QStringLiteral("[D-BUS Service]\nName=%1\nExec=%2\n").arg(name, exec).toUtf8();
}

} // namespace kestrel
