// A request to the loopback redirect. The last two bytes say where a network might have cut it: what is
// decided once the Host line has come is decided for all of it.
#include "Require.h"
#include "auth/RedirectRequest.h"
#include "auth/Utf8.h"
#include <fuzzer/FuzzedDataProvider.h>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

constexpr quint16 port = 43210;

/// Whether the lines up to the one that names the host are all there.
bool holdsHostLine(const QByteArray &part)
{
    const QByteArray lines = "\r\n" + part.toLower();
    const qsizetype host = lines.indexOf("\r\nhost:");
    return host >= 0 && lines.indexOf("\r\n", host + 2) >= 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider input(bytes, size);
    const auto cut = input.ConsumeIntegral<quint16>();
    const QByteArray request = QByteArray::fromStdString(input.ConsumeRemainingBytesAsString());
    const auto whole = readRedirect(request, port);
    using Kind = RedirectFault::Kind;
    if (whole) {
        require(request.trimmed().startsWith("GET ") && request.contains(" /callback"));
        require(request.toLower().contains("127.0.0.1:43210"));
        require(whole->code.isValidUtf16() && whole->state.isValidUtf16());
        // meant for another port, it is nobody's
        const auto elsewhere = readRedirect(request, port + 1);
        require(!elsewhere && elsewhere.error().kind == Kind::BadHost);
    } else {
        require(whole.error().kind == Kind::Denied || whole.error().error.isNull());
    }
    const QByteArray part = request.first(cut % (request.size() + 1));
    if (!fromStrictUtf8(request) || !fromStrictUtf8(part))
        return 0;
    const auto early = readRedirect(part, port);
    if (holdsHostLine(part))
        require(early == whole);
    else if (early)
        require(!part.endsWith("\r\n")); // cut in the middle of the Host line, right behind its value
    return 0;
}
