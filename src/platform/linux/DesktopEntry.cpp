#include "platform/linux/DesktopEntry.h"
#include <QFile>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The escapes of every string value of a .desktop file; an unknown one stays as it is.
QString unescaped(const QString &value)
{
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        static constexpr QStringView letters = u"sntr\\";
        static constexpr QStringView meanings = u" \n\t\r\\";
        const qsizetype escape =
            value[i] == u'\\' && i + 1 < value.size() ? letters.indexOf(value[i + 1]) : -1;
        if (escape >= 0) {
            text += meanings[escape];
            ++i;
        } else {
            text += value[i];
        }
    }
    return text;
}

QString escaped(QString text)
{
    return text.replace(u'\\', "\\\\"_L1)
        .replace(u'\n', "\\n"_L1)
        .replace(u'\t', "\\t"_L1)
        .replace(u'\r', "\\r"_L1);
}

} // namespace

QString desktopEntryValue(const QString &path, QLatin1StringView key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QTextStream text(&file);
    bool isMainGroup = false;
    for (QString line; text.readLineInto(&line);) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(u'[')) {
            isMainGroup = trimmed == "[Desktop Entry]"_L1;
            continue;
        }
        const qsizetype equals = trimmed.indexOf(u'=');
        if (isMainGroup && equals > 0 && QStringView(trimmed).first(equals).trimmed() == key)
            return trimmed.mid(equals + 1).trimmed();
    }
    return {};
}

std::expected<QStringList, QString> execArguments(const QString &exec)
{
    static constexpr QStringView fieldCodes = u"fFuUdDnNickvm";
    const QString text = unescaped(exec);
    QStringList arguments;
    QString argument;
    bool isArgument = false;
    bool isQuoted = false;
    const auto flush = [&] {
        if (isArgument)
            arguments.append(argument);
        argument.clear();
        isArgument = false;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const QChar next = i + 1 < text.size() ? text[i + 1] : QChar();
        if (c == u'"') {
            isQuoted = !isQuoted;
            isArgument = true;
        } else if (c == u'\\' && !next.isNull()) {
            argument += next;
            isArgument = true;
            ++i;
        } else if (c == u'%' && next == u'%') {
            argument += c;
            isArgument = true;
            ++i;
        } else if (c == u'%') {
            if (next.isNull() || !fieldCodes.contains(next))
                return std::unexpected(u"Exec holds an unknown field code: %1"_s.arg(exec));
            ++i;
        } else if (!isQuoted && (c == u' ' || c == u'\t' || c == u'\n')) {
            flush();
        } else {
            argument += c;
            isArgument = true;
        }
    }
    if (isQuoted)
        return std::unexpected(u"A quote in Exec is not closed: %1"_s.arg(exec));
    flush();
    if (arguments.isEmpty() || arguments.first().isEmpty())
        return std::unexpected(u"Exec names no program"_s);
    return arguments;
}

std::optional<QByteArray> withProgram(const QByteArray &entry, const QString &program)
{
    // the format knows no way to write '=' in Exec, and GLib does not find a program with '%'
    if (!program.startsWith(u'/') || program.contains(u'=') || program.contains(u'%'))
        return {};
    QString quoted = program;
    for (const auto *special : { "\\", "\"", "`", "$" })
        quoted.replace(QLatin1StringView(special), u'\\' + QLatin1StringView(special));
    const QString exec = escaped(u'"' + quoted + u'"');

    QStringList lines = QString::fromUtf8(entry).split(u'\n');
    for (QString &line : lines) {
        if (line.startsWith("TryExec="_L1)) {
            line = u"TryExec="_s + escaped(program);
        } else if (line.startsWith("Exec="_L1)) {
            const qsizetype end = line.indexOf(u' ');
            line = u"Exec="_s + exec + (end < 0 ? QString() : line.mid(end));
        }
    }
    return lines.join(u'\n').toUtf8();
}

} // namespace kestrel
