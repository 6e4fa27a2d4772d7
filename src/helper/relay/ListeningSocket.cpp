#include "helper/relay/ListeningSocket.h"
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrel::relay {

namespace {

std::string failure(const std::string &path)
{
    return path + ": " + std::strerror(errno);
}

std::string environment(const char *name)
{
    const char *value = ::getenv(name);
    return value ? value : "";
}

/// Empty where the session has no folder for such things.
std::string socketFolder()
{
    if (auto folder = environment("KESTREL_BROWSER_SOCKETS"); !folder.empty())
        return folder;
    std::string runtime = environment("XDG_RUNTIME_DIR");
    if (runtime.empty())
        runtime = "/run/user/" + std::to_string(::getuid());
    return runtime + "/kestrel/browsers";
}

void makeFolders(const std::string &folder)
{
    for (auto slash = folder.find('/', 1); slash != std::string::npos; slash = folder.find('/', slash + 1))
        ::mkdir(folder.substr(0, slash).c_str(), S_IRWXU);
    ::mkdir(folder.c_str(), S_IRWXU);
}

bool fits(const std::string &path)
{
    return path.size() < sizeof(sockaddr_un::sun_path);
}

sockaddr_un addressOf(const std::string &path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::memcpy(static_cast<char *>(address.sun_path), path.c_str(), path.size() + 1);
    return address;
}

void removeIfForsaken(const std::string &path)
{
    if (!fits(path))
        return;
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (probe < 0)
        return;
    const sockaddr_un address = addressOf(path);
    if (::connect(probe, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0
        && errno == ECONNREFUSED)
        ::unlink(path.c_str());
    ::close(probe);
}

void removeForsaken(const std::string &folder)
{
    DIR *entries = ::opendir(folder.c_str());
    if (!entries)
        return;
    while (const dirent *entry = ::readdir(entries)) {
        const std::string_view name = static_cast<const char *>(entry->d_name);
        if (name.ends_with(".sock"))
            removeIfForsaken(std::string(folder).append(1, '/').append(name));
    }
    ::closedir(entries);
}

} // namespace

ListeningSocket::~ListeningSocket()
{
    if (!m_path.empty())
        ::unlink(m_path.c_str());
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::string ListeningSocket::open()
{
    const std::string folder = socketFolder();
    makeFolders(folder);
    struct stat entry {};
    if (::lstat(folder.c_str(), &entry) != 0)
        return failure(folder);
    if (!S_ISDIR(entry.st_mode) || entry.st_uid != ::geteuid() || (entry.st_mode & 0777U) != S_IRWXU)
        return folder + ": is not a folder that only its owner may enter (mode 0700)";
    removeForsaken(folder);

    timespec now {};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    const auto start = static_cast<unsigned long long>(now.tv_sec) * 1'000'000'000ULL
        + static_cast<unsigned long long>(now.tv_nsec);
    std::array<char, 64> name {};
    std::snprintf(name.data(), name.size(), "%016llx-%d.sock", start, static_cast<int>(::getpid()));
    const std::string path = folder + '/' + name.data();
    // Under another name until it listens: before, it refuses connections like one that was left behind.
    const std::string unready = path + ".new";
    if (!fits(unready))
        return folder + ": the path is too long for a socket";
    m_descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = addressOf(unready);
    if (m_descriptor < 0
        || ::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        return failure(unready);
    m_path = unready;
    if (::listen(m_descriptor, 16) != 0 || ::rename(unready.c_str(), path.c_str()) != 0)
        return failure(path);
    m_path = path;
    return {};
}

int ListeningSocket::accept() const
{
    const int client = ::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0)
        return -1;
    ucred peer {};
    socklen_t size = sizeof peer;
    if (::getsockopt(client, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid())
        return client;
    ::close(client);
    return -1;
}

} // namespace kestrel::relay
