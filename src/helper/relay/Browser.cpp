#include "helper/relay/Browser.h"
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace kestrel::relay {

namespace {

std::string linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target {};
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length < 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(length));
}

std::string contentOf(const std::string &path)
{
    std::string text;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::array<char, 4096> part {};
    for (ssize_t length = 0; file >= 0 && (length = ::read(file, part.data(), part.size())) > 0;)
        text.append(part.data(), static_cast<std::size_t>(length));
    if (file >= 0)
        ::close(file);
    return text;
}

std::vector<std::string> commandLine(const std::string &path)
{
    // that of a process that is starting others may be empty for a moment
    std::string text = contentOf(path);
    for (int tries = 0; text.empty() && tries < 2000; ++tries) {
        ::usleep(1000);
        text = contentOf(path);
    }
    // some browsers write their own title there, as one text with spaces
    if (text.find('\0') >= text.size() - 1) {
        for (auto gap = text.find(" --"); gap != std::string::npos; gap = text.find(" --", gap + 1))
            text[gap] = '\0';
    }
    std::vector<std::string> words;
    for (std::size_t start = 0; start < text.size();) {
        const auto end = std::min(text.find('\0', start), text.size());
        words.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

std::string environment(const char *name)
{
    const char *value = ::getenv(name);
    return value ? value : "";
}

struct UsualFolder
{
    std::string_view program; ///< a part of its path
    std::string_view folder; ///< below the folder of configuration files
};

// more particular ones first
constexpr std::array usualFolders {
    UsualFolder { "/chrome-beta/", "google-chrome-beta" },
    UsualFolder { "/chrome-unstable/", "google-chrome-unstable" },
    UsualFolder { "/google/chrome/", "google-chrome" },
    UsualFolder { "/brave", "BraveSoftware/Brave-Browser" },
    UsualFolder { "/msedge/", "microsoft-edge" },
    UsualFolder { "/chromium", "chromium" },
};

} // namespace

std::string userDataDir(const std::string &program, const std::vector<std::string> &arguments,
                        const std::string &workingFolder)
{
    constexpr std::string_view option = "--user-data-dir=";
    // of several the browser takes the last
    for (auto word = arguments.rbegin(); word != arguments.rend(); ++word) {
        if (!word->starts_with(option))
            continue;
        std::string folder = word->substr(option.size());
        if (!folder.starts_with('/') && !workingFolder.empty())
            folder = std::string(workingFolder).append(1, '/').append(folder);
        // in such a title an address may follow
        std::string shorter = folder;
        while (::access(shorter.c_str(), F_OK) != 0 && shorter.find(' ') != std::string::npos)
            shorter.erase(shorter.rfind(' '));
        return ::access(shorter.c_str(), F_OK) == 0 ? shorter : folder;
    }
    if (auto folder = environment("CHROME_USER_DATA_DIR"); !folder.empty())
        return folder;
    std::string config = environment("CHROME_CONFIG_HOME");
    if (config.empty())
        config = environment("XDG_CONFIG_HOME");
    if (config.empty())
        config = environment("HOME") + "/.config";
    for (const UsualFolder &usual : usualFolders) {
        if (program.find(usual.program) != std::string::npos)
            return config.append(1, '/').append(usual.folder);
    }
    return {};
}

Browser parentBrowser()
{
    Browser browser;
    browser.route = "extension";
    browser.pid = ::getppid();
    const std::string process = "/proc/" + std::to_string(browser.pid);
    browser.program = linkTarget(process + "/exe");
    browser.userDataDir =
        userDataDir(browser.program, commandLine(process + "/cmdline"), linkTarget(process + "/cwd"));
    browser.input = STDIN_FILENO;
    browser.output = STDOUT_FILENO;
    return browser;
}

std::expected<Browser, int> startBrowser(const std::vector<std::string> &command)
{
    Browser browser;
    browser.route = "devtools";
    browser.framing = Framing::Zero;
    browser.program = command.front();
    std::array<char, PATH_MAX> folder {};
    browser.userDataDir =
        userDataDir(browser.program, command, ::getcwd(folder.data(), folder.size()) ? folder.data() : "");

    // 5 and above, so that no end lies where the browser's ends go
    std::array<int, 2> told {};
    std::array<int, 2> said {};
    std::array<int, 2> fault {}; ///< tells why the program cannot be run, and closes when it runs
    for (auto *ends : { &told, &said, &fault }) {
        if (::pipe2(ends->data(), O_CLOEXEC) != 0)
            return std::unexpected(errno);
        for (int &end : *ends) {
            const int moved = ::fcntl(end, F_DUPFD_CLOEXEC, 5);
            ::close(end);
            end = moved;
        }
    }
    std::vector<char *> words;
    words.reserve(command.size() + 1);
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str())); // exec takes what it does not change
    words.push_back(nullptr);

    browser.pid = ::fork();
    if (browser.pid < 0)
        return std::unexpected(errno);
    if (browser.pid == 0) {
        ::dup2(told[0], 3);
        ::dup2(said[1], 4);
        std::signal(SIGPIPE, SIG_DFL);
        ::execvp(words[0], words.data());
        const int error = errno;
        (void)!::write(fault[1], &error, sizeof error);
        ::_exit(127);
    }
    for (const int end : { told[0], said[1], fault[1] })
        ::close(end);
    int error = 0;
    const bool failed = ::read(fault[0], &error, sizeof error) == sizeof error;
    ::close(fault[0]);
    if (failed)
        return std::unexpected(error);
    browser.input = said[0];
    browser.output = told[1];
    return browser;
}

} // namespace kestrel::relay
