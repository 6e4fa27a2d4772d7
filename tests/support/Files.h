#pragma once
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kestrel {

/// Null where there is no file.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// With the folders that it lies in.
inline void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
        || file.write(content) != content.size())
        qFatal("the test cannot write %s", qPrintable(path));
}

inline void writeProgram(const QString &path, const QByteArray &content)
{
    writeFile(path, content);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace kestrel
