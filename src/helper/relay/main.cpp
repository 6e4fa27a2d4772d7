#include "helper/relay/Relay.h"
#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <string_view>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace kestrel::relay;

namespace {

constexpr std::string_view ownOrigin = "chrome-extension://gcoehfepgndjcehifahbpicecdkiomml/";

int complain(const std::string &message)
{
    std::fprintf(stderr, "kestrel-browser-relay: %s\n", message.c_str());
    return 1;
}

/// From now on what ends a process is read from the descriptor that this returns.
int endingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : { SIGTERM, SIGINT, SIGHUP })
        sigaddset(&ending, signal);
    ::sigprocmask(SIG_BLOCK, &ending, nullptr);
    return ::signalfd(-1, &ending, SFD_CLOEXEC);
}

int serveParent()
{
    ListeningSocket socket;
    if (const auto fault = socket.open(); !fault.empty())
        return complain(fault);
    Relay(parentBrowser(), socket, endingSignals()).run();
    return 0;
}

int serveOwnBrowser(const std::vector<std::string> &command)
{
    ::setsid();
    ListeningSocket socket;
    if (const auto fault = socket.open(); !fault.empty())
        return complain(fault);
    const auto browser = startBrowser(command);
    if (!browser)
        return complain(command.front() + ": " + std::strerror(browser.error()));
    const int signals = endingSignals();
    // whoever started us need not look for the socket
    std::puts(socket.path().c_str());
    std::fflush(stdout);
    ::close(STDOUT_FILENO);
    Relay(*browser, socket, signals).run();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    // what a large message took goes back to the system at once
    ::mallopt(M_MMAP_THRESHOLD, 64 * 1024);
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() >= 3 && words[0] == "--devtools" && words[1] == "--")
        return serveOwnBrowser({ words.begin() + 2, words.end() });
    if (!words.empty() && words[0] == ownOrigin)
        return serveParent();
    std::fputs("kestrel-browser-relay stands between Kestrel and a browser. Browsers start it for Kestrel's "
               "extension;\n--devtools -- PROGRAM [ARGUMENT...] starts a browser with a DevTools pipe.\n",
               stderr);
    return 2;
}
