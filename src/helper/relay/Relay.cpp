#include "helper/relay/Relay.h"
#include "helper/relay/Json.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kestrel::relay {

namespace {

constexpr std::size_t mostClients = 8;
constexpr std::size_t mostWaiting = 4'000'000; ///< bytes, for one receiver
constexpr long long helloPatience = 700;
constexpr std::string_view helloStart = R"({"hello":1,)";

long long milliseconds()
{
    timespec now {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

void makeNonBlocking(int descriptor)
{
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

bool isMomentary(int error)
{
    return error == EAGAIN || error == EINTR;
}

/// What `kestrel browser install` wrote beside the extension; empty where there is none.
std::string installedRevision()
{
    std::string folder;
    if (const char *own = ::getenv("KESTREL_BROWSER_EXTENSION"))
        folder = own;
    else if (const char *shared = ::getenv("XDG_DATA_HOME"); shared && *shared == '/')
        folder = std::string(shared) + "/kestrel/browser-extension";
    else if (const char *home = ::getenv("HOME"))
        folder = std::string(home) + "/.local/share/kestrel/browser-extension";
    const int file = ::open((folder + "/revision").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return {};
    std::array<char, 128> text {};
    const ssize_t length = ::read(file, text.data(), text.size());
    ::close(file);
    std::string revision(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    revision.erase(std::min(revision.find('\n'), revision.size()));
    return revision;
}

} // namespace

void Relay::Outbox::add(Message message)
{
    size += message->size();
    messages.push_back(std::move(message));
}

bool Relay::Outbox::flush(int descriptor)
{
    while (!messages.empty()) {
        const std::string &first = *messages.front();
        const ssize_t count = ::write(descriptor, first.data() + written, first.size() - written);
        if (count < 0)
            return isMomentary(errno);
        written += static_cast<std::size_t>(count);
        size -= static_cast<std::size_t>(count);
        if (written == first.size()) {
            messages.pop_front();
            written = 0;
        }
    }
    return true;
}

Relay::Relay(Browser browser, ListeningSocket &socket, int signals)
    : m_browser(std::move(browser))
    , m_socket(socket)
    , m_signals(signals)
    , m_reader(m_browser.framing, FrameReader::Excess::Skip)
{
    makeNonBlocking(m_browser.input);
    makeNonBlocking(m_browser.output);
    if (m_browser.route == "extension")
        sayHello();
}

void Relay::run()
{
    enum { Signals, Input, Output, Listener, FirstClient };
    std::vector<pollfd> polled;
    for (;;) {
        // a browser that does not read must not make us hoard: clients wait then
        const bool takesMore = m_toBrowser.size < mostWaiting;
        polled.assign({
            { m_signals, POLLIN, 0 },
            { m_browser.input, POLLIN, 0 },
            { m_toBrowser.messages.empty() ? -1 : m_browser.output, POLLOUT, 0 },
            { m_socket.descriptor(), POLLIN, 0 },
        });
        for (const Client &client : m_clients) {
            // nothing is asked before the greeting
            const bool mayAsk = takesMore && client.greetBy == 0;
            const int events = (mayAsk ? POLLIN : 0) | (client.outbox.messages.empty() ? 0 : POLLOUT);
            polled.push_back({ client.descriptor, static_cast<short>(events), 0 });
        }
        if (::poll(polled.data(), polled.size(), timeToGreeting()) < 0 && errno != EINTR)
            return;
        if (polled[Signals].revents != 0)
            return;
        // clients first, while they are in the order in which they were polled
        std::size_t index = FirstClient;
        for (auto client = m_clients.begin(); client != m_clients.end();) {
            const int events = polled[index++].revents;
            const bool stays = ((events & POLLOUT) == 0 || client->outbox.flush(client->descriptor))
                && ((events & (POLLIN | POLLHUP | POLLERR)) == 0 || readClient(*client));
            if (!stays)
                ::close(client->descriptor);
            client = stays ? std::next(client) : m_clients.erase(client);
        }
        if (polled[Input].revents != 0 && !readBrowser())
            return;
        // an extension that does not answer is not what it said it was
        if (timeToGreeting() == 0) {
            m_hello.clear();
            greetWaiting();
        }
        // one a turn, so that whoever left before it came is noticed first
        if (polled[Listener].revents != 0)
            acceptClient();
        if (!m_toBrowser.flush(m_browser.output))
            return;
        // one that has let too much wait for it is stuck
        m_clients.remove_if([](Client &client) {
            const bool isLost = !client.outbox.flush(client.descriptor) || client.outbox.size > mostWaiting;
            if (isLost)
                ::close(client.descriptor);
            return isLost;
        });
    }
}

bool Relay::readBrowser()
{
    std::array<char, 16'384> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const ssize_t count = ::read(m_browser.input, bytes.data(), bytes.size());
    if (count <= 0)
        return count < 0 && isMomentary(errno);
    return m_reader.feed({ bytes.data(), static_cast<std::size_t>(count) },
                         [this](std::string_view message) { takeFromBrowser(message); });
}

void Relay::takeFromBrowser(std::string_view message)
{
    const bool isHello = m_browser.route == "extension" && message.starts_with(helloStart)
        && message.ends_with('}') && message.size() < 1000;
    const auto said =
        isHello ? message.substr(helloStart.size(), message.size() - helloStart.size() - 1) : "";
    if (!isHello || said != m_hello) {
        const auto copy = std::make_shared<const std::string>(framed(message, Framing::Length));
        for (Client &client : m_clients) {
            if (client.greetBy == 0)
                client.outbox.add(copy);
        }
    }
    if (isHello) {
        m_hello = said;
        greetWaiting();
    }
}

void Relay::sayHello()
{
    const std::string hello =
        std::string(helloStart) + R"("installed":)" + jsonText(installedRevision()) + "}";
    m_toBrowser.add(std::make_shared<const std::string>(framed(hello, m_browser.framing)));
}

void Relay::acceptClient()
{
    const int descriptor = m_socket.accept();
    if (descriptor < 0)
        return;
    if (m_clients.size() == mostClients) {
        ::close(descriptor);
        return;
    }
    m_clients.push_back({ descriptor });
    if (m_browser.route == "extension") {
        m_clients.back().greetBy = milliseconds() + helloPatience;
        sayHello();
    } else {
        greet(m_clients.back());
    }
}

bool Relay::readClient(Client &client)
{
    std::array<char, 16'384> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const ssize_t count = ::read(client.descriptor, bytes.data(), bytes.size());
    if (count <= 0)
        return count < 0 && isMomentary(errno);
    bool isWhole = true;
    const bool isSound =
        client.reader.feed({ bytes.data(), static_cast<std::size_t>(count) }, [&](std::string_view message) {
            // a zero byte would let one message pass for two
            isWhole = isWhole && message.find('\0') == std::string_view::npos;
            if (isWhole)
                m_toBrowser.add(std::make_shared<const std::string>(framed(message, m_browser.framing)));
        });
    return isSound && isWhole;
}

void Relay::greet(Client &client)
{
    client.greetBy = 0;
    client.outbox.add(std::make_shared<const std::string>(framed(greeting(), Framing::Length)));
}

void Relay::greetWaiting()
{
    for (Client &client : m_clients) {
        if (client.greetBy != 0)
            greet(client);
    }
}

std::string Relay::greeting() const
{
    return R"({"relay":1,"route":)" + jsonText(m_browser.route) + R"(,"browser":)"
        + jsonText(m_browser.program) + R"(,"browserPid":)" + std::to_string(m_browser.pid)
        + R"(,"userDataDir":)" + jsonText(m_browser.userDataDir) + (m_hello.empty() ? "" : ",") + m_hello
        + "}";
}

int Relay::timeToGreeting() const
{
    long long next = -1;
    for (const Client &client : m_clients) {
        if (client.greetBy != 0 && (next < 0 || client.greetBy < next))
            next = client.greetBy;
    }
    return next < 0 ? -1 : static_cast<int>(std::max(0LL, next - milliseconds()));
}

} // namespace kestrel::relay
