#pragma once

namespace kestrel::demo {

/// Ends the event loop on SIGTERM and SIGINT. Once a program, with its application object there.
void endOnSignals();
/// Ends the event loop when standard input does: a parent that dies closes its end of the pipe, however it
/// dies.
void endWithStdin();

} // namespace kestrel::demo
