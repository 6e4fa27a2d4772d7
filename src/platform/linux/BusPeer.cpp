#include "platform/linux/BusPeer.h"
#include <QCoro/QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace kestrel {

QCoro::Task<std::optional<qint64>> processOf(QDBusConnection bus, QString name)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s);
    call << name;
    const QDBusMessage answer = co_await bus.asyncCall(call);
    if (answer.type() != QDBusMessage::ReplyMessage)
        co_return std::optional<qint64>();
    co_return std::optional<qint64>(answer.arguments().value(0).toLongLong());
}

QString processName(qint64 process)
{
    QFile comm(u"/proc/%1/comm"_s.arg(process));
    const QString name =
        comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readLine().trimmed()) : QString();
    // the kernel cuts it at 15 characters; the program is another one where a script runs in it
    const QString program = QFileInfo(QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(process))).fileName();
    return program.startsWith(name) ? program : name;
}

} // namespace kestrel
