#include "base/Log.h"
#include <QByteArray>
#include <cstdio>
#include <sys/stat.h>

namespace kestrel {

Q_LOGGING_CATEGORY(lcApp, "app", QtInfoMsg)
Q_LOGGING_CATEGORY(lcAuth, "auth", QtInfoMsg)
Q_LOGGING_CATEGORY(lcCalendar, "calendar", QtInfoMsg)
Q_LOGGING_CATEGORY(lcAlerts, "alerts", QtInfoMsg)
Q_LOGGING_CATEGORY(lcMenubar, "menubar", QtInfoMsg)
Q_LOGGING_CATEGORY(lcBridge, "bridge", QtInfoMsg)

namespace {

int severity(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return 0;
    case QtInfoMsg:
        return 1;
    case QtWarningMsg:
        return 2;
    case QtCriticalMsg:
        return 3;
    case QtFatalMsg:
        return 4;
    }
    return 4;
}

QtMsgType s_lowestLevel = QtInfoMsg;

/// JOURNAL_STREAM is inherited by children whose stderr may go elsewhere, hence the look at the stream itself
/// (systemd.exec(5)).
bool isUnderJournal()
{
    struct stat stream {};
    if (fstat(fileno(stderr), &stream) != 0)
        return false;
    return qgetenv("JOURNAL_STREAM")
        == QByteArray::number(stream.st_dev) + ':' + QByteArray::number(stream.st_ino);
}

/// sd-daemon's prefixes: the journal reads a line's priority from them.
const char *journalPrefix(QtMsgType type)
{
    static constexpr const char *prefixes[] = { "<7>", "<6>", "<4>", "<3>", "<2>" };
    return prefixes[severity(type)];
}

void writeMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (severity(type) < severity(s_lowestLevel))
        return;
    static const bool underJournal = isUnderJournal();
    QByteArray line = message.toUtf8();
    line.replace('\n', ' ');
    const char *category = context.category ? context.category : "default";
    std::fprintf(stderr, "%s%s: %s\n", underJournal ? journalPrefix(type) : "", category, line.constData());
}

} // namespace

void installLog(QtMsgType lowestLevel)
{
    s_lowestLevel = lowestLevel;
    qInstallMessageHandler(writeMessage);
}

QString errorForLog(const QString &text)
{
    constexpr qsizetype limit = 300;
    return text.simplified().left(limit);
}

} // namespace kestrel
