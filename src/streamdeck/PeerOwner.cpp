#include "streamdeck/PeerOwner.h"
#include <QByteArray>
#include <QFile>
#include <QtEndian>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrel {

namespace {

struct Ends
{
    sockaddr_in ours;
    sockaddr_in theirs;
};

std::optional<Ends> endsOf(int descriptor)
{
    Ends ends {};
    socklen_t ourSize = sizeof ends.ours;
    socklen_t theirSize = sizeof ends.theirs;
    if (getsockname(descriptor, reinterpret_cast<sockaddr *>(&ends.ours), &ourSize) != 0
        || getpeername(descriptor, reinterpret_cast<sockaddr *>(&ends.theirs), &theirSize) != 0
        || ends.ours.sin_family != AF_INET || ends.theirs.sin_family != AF_INET)
        return {};
    return ends;
}

/// An end as the kernel's tables print it: the address as it lies in memory, the port as a number.
QByteArray printed(const sockaddr_in &end, QByteArrayView prefix)
{
    const auto hex = [](quint32 value, int width) {
        return QByteArray::number(value, 16).toUpper().rightJustified(width, '0');
    };
    return prefix.toByteArray() + hex(end.sin_addr.s_addr, 8) + ':' + hex(ntohs(end.sin_port), 4);
}

std::optional<uid_t> ownerIn(const QString &table, const QByteArray &local, const QByteArray &remote)
{
    QFile file(table);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // proc(5): sl local_address rem_address st queues timer retransmits uid …
    while (true) {
        const QByteArray line = file.readLine();
        if (line.isEmpty())
            return {};
        const auto words = line.simplified().split(' ');
        if (words.size() > 7 && words[1] == local && words[2] == remote)
            return words[7].toUInt();
    }
}

} // namespace

std::optional<uid_t> peerOwner(int descriptor)
{
    const auto owner = peerOwnerFromDiagnostics(descriptor);
    return owner ? owner : peerOwnerFromTables(descriptor);
}

std::optional<uid_t> peerOwnerFromDiagnostics(int descriptor)
{
    const auto ends = endsOf(descriptor);
    const int netlink = ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_SOCK_DIAG);
    if (netlink < 0)
        return {};
    std::optional<uid_t> owner;
    if (ends) {
        // sock_diag(7)
        struct
        {
            nlmsghdr header;
            inet_diag_req_v2 body;
        } question {};
        question.header.nlmsg_len = sizeof question;
        question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
        question.header.nlmsg_flags = NLM_F_REQUEST;
        question.body.sdiag_family = AF_INET;
        question.body.sdiag_protocol = IPPROTO_TCP;
        question.body.idiag_states = ~0U;
        question.body.id.idiag_sport = ends->theirs.sin_port;
        question.body.id.idiag_src[0] = ends->theirs.sin_addr.s_addr;
        question.body.id.idiag_dport = ends->ours.sin_port;
        question.body.id.idiag_dst[0] = ends->ours.sin_addr.s_addr;
        question.body.id.idiag_cookie[0] = question.body.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
        // the kernel answers within send()
        alignas(nlmsghdr) char answer[4096];
        const auto *header = reinterpret_cast<const nlmsghdr *>(answer);
        if (::send(netlink, &question, sizeof question, 0) == ssize_t(sizeof question)
            && ::recv(netlink, answer, sizeof answer, 0) >= ssize_t(NLMSG_LENGTH(sizeof(inet_diag_msg)))
            && header->nlmsg_type == SOCK_DIAG_BY_FAMILY)
            owner = static_cast<const inet_diag_msg *>(NLMSG_DATA(header))->idiag_uid;
    }
    ::close(netlink);
    return owner;
}

std::optional<uid_t> peerOwnerFromTables(int descriptor)
{
    const auto ends = endsOf(descriptor);
    if (!ends)
        return {};
    const auto find = [&](const char *table, QByteArrayView prefix) {
        return ownerIn(QString::fromLatin1(table), printed(ends->theirs, prefix),
                       printed(ends->ours, prefix));
    };
    if (const auto owner = find("/proc/net/tcp", ""))
        return owner;
    // a client may reach IPv4 through an IPv6 socket
    constexpr QByteArrayView mapped =
        Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "0000000000000000FFFF0000" : "00000000000000000000FFFF";
    return find("/proc/net/tcp6", mapped);
}

} // namespace kestrel
