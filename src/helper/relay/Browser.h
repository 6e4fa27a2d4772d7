#pragma once
#include "helper/relay/Frames.h"
#include <expected>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrel::relay {

/// The other end of the relay's pipe, as clients are told of it.
struct Browser
{
    std::string route; ///< "extension" or "devtools"
    pid_t pid = 0;
    std::string program;
    std::string userDataDir; ///< empty where it is not known
    int input = -1; ///< what the browser says
    int output = -1; ///< what it is told
    Framing framing = Framing::Length;
};

/// The browser that started this process as its native-messaging host.
[[nodiscard]] Browser parentBrowser();

/// Starts `command` with a DevTools pipe. The error is a number of errno: the program cannot be run.
[[nodiscard]] std::expected<Browser, int> startBrowser(const std::vector<std::string> &command);

/// The data folder that a browser of this program and these arguments works in, as far as can be told.
[[nodiscard]] std::string userDataDir(const std::string &program, const std::vector<std::string> &arguments,
                                      const std::string &workingFolder);

} // namespace kestrel::relay
