#pragma once
#include <QCoreApplication>
#include <QTcpSocket>
#include <QUrlQuery>

namespace kestrel {

/// Plays the browser of a sign-in: comes back to the redirect address of the page `asked` for, with `query`;
/// STATE stands for the state that was asked with.
inline void comeBack(const QUrl &asked, QString query)
{
    const QUrlQuery question(asked);
    const QUrl redirect(question.queryItemValue(QStringLiteral("redirect_uri"), QUrl::FullyDecoded));
    query.replace(QStringLiteral("STATE"), question.queryItemValue(QStringLiteral("state")));
    const QByteArray request = "GET " + redirect.path().toUtf8() + query.toUtf8()
        + " HTTP/1.1\r\nHost: " + redirect.authority().toUtf8() + "\r\n\r\n";
    auto *socket = new QTcpSocket(QCoreApplication::instance());
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QTcpSocket::connected, socket, [socket, request] { socket->write(request); });
    socket->connectToHost(redirect.host(), static_cast<quint16>(redirect.port()));
}

} // namespace kestrel
