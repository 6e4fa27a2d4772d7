// A change of the call's state on its way to 200 clients of the bridge, which read on a thread of their own.
#include "benchmarks/BudgetTable.h"
#include "streamdeck/StreamDeckBridge.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTcpServer>
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <netinet/in.h>
#include <string>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr int clients = 200;
constexpr int rounds = 500;

/// Bare sockets: what a client makes of the message is not the bridge's time.
class Readers
{
public:
    explicit Readers(quint16 port)
        : m_poll(epoll_create1(0))
        , m_thread([this, port] { run(port); })
    {
    }
    ~Readers()
    {
        m_isOver = true;
        m_thread.join();
        ::close(m_poll);
    }
    Readers(const Readers &) = delete;
    Readers &operator=(const Readers &) = delete;

    /// Whole text frames of all clients together, the greetings included.
    [[nodiscard]] int frames() const { return m_frames.load(std::memory_order_acquire); }

private:
    void run(quint16 port)
    {
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        constexpr std::string_view request = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\n"
                                             "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                                             "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n";
        std::array<std::string, clients> unread;
        std::array<int, clients> sockets {};
        for (unsigned i = 0; i < clients; ++i) {
            sockets[i] = ::socket(AF_INET, SOCK_STREAM, 0);
            ::connect(sockets[i], reinterpret_cast<sockaddr *>(&address), sizeof address);
            ::send(sockets[i], request.data(), request.size(), 0);
            std::string &head = unread[i];
            std::array<char, 1024> buffer;
            while (head.find("\r\n\r\n") == std::string::npos) {
                const auto count = ::recv(sockets[i], buffer.data(), buffer.size(), 0);
                if (count <= 0)
                    return;
                head.append(buffer.data(), size_t(count));
            }
            head.erase(0, head.find("\r\n\r\n") + 4);
            take(head);
            epoll_event event {};
            event.events = EPOLLIN;
            event.data.u32 = i;
            epoll_ctl(m_poll, EPOLL_CTL_ADD, sockets[i], &event);
        }
        while (!m_isOver) {
            std::array<epoll_event, clients> events;
            const int ready = epoll_wait(m_poll, events.data(), clients, 100);
            for (int i = 0; i < ready; ++i) {
                const auto client = events[size_t(i)].data.u32;
                std::array<char, 4096> buffer;
                const auto count = ::recv(sockets[client], buffer.data(), buffer.size(), 0);
                if (count > 0)
                    unread[client].append(buffer.data(), size_t(count));
                take(unread[client]);
            }
        }
        for (const int socket : sockets)
            ::close(socket);
    }

    /// The bridge's frames are unmasked, and these messages shorter than 126 bytes or than 64 KiB.
    void take(std::string &bytes)
    {
        while (bytes.size() >= 2) {
            const auto shortSize = static_cast<unsigned char>(bytes[1]);
            const size_t header = shortSize == 126 ? 4 : 2;
            if (bytes.size() < header)
                return;
            const size_t size = shortSize == 126
                ? size_t(static_cast<unsigned char>(bytes[2])) * 256 + static_cast<unsigned char>(bytes[3])
                : shortSize;
            if (bytes.size() < header + size)
                return;
            bytes.erase(0, header + size);
            m_frames.fetch_add(1, std::memory_order_release);
        }
    }

    int m_poll;
    std::atomic<int> m_frames = 0;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

void benchmarkBroadcast(benchmark::State &state)
{
    quint16 port = 0;
    {
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        port = free.serverPort();
    }
    StreamDeckBridge bridge;
    MeetStateSnapshot snapshot { .inMeeting = true };
    bridge.stateProvider = [&] { return snapshot; };
    bridge.start(port);
    const Readers readers(port);
    const auto reached = [&](int frames) {
        QElapsedTimer limit;
        limit.start();
        while (readers.frames() < frames && limit.elapsed() < 10'000)
            QCoreApplication::processEvents();
        return readers.frames() == frames;
    };
    if (!reached(clients))
        return state.SkipWithError("the clients were not greeted");
    std::vector<double> times;
    for ([[maybe_unused]] auto iteration : state) {
        for (int round = 1; round <= rounds; ++round) {
            snapshot.micOn = !snapshot.micOn;
            QElapsedTimer timer;
            timer.start();
            bridge.broadcast(snapshot);
            if (!reached(clients * (round + 1)))
                return state.SkipWithError("a message did not arrive");
            times.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
    }
    report(state, times);
}

} // namespace

} // namespace kestrel

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"*.info=false"_s);
    benchmark::Initialize(&argc, argv);
    constexpr const char *name = "state change to 200 bridge clients";
    benchmark::RegisterBenchmark(name, kestrel::benchmarkBroadcast)->Iterations(1);
    kestrel::BudgetTable table("ms", { { name, 5 } });
    return table.run();
}
