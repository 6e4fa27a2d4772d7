// What a client of the bridge sends, in two pieces: the head of its request, its frames, and a message. The
// last bytes say where it is cut.
#include "Require.h"
#include "streamdeck/DeckCommand.h"
#include "streamdeck/HandshakeHead.h"
#include "streamdeck/MaskCheck.h"
#include <QJsonDocument>
#include <QJsonObject>
#include <fuzzer/FuzzedDataProvider.h>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

void checkHandshake(const QByteArray &part, const QByteArray &whole)
{
    const auto early = judgeHandshake(part);
    const auto verdict = judgeHandshake(whole);
    // a refusal stands, and what is complete stays so only without another byte
    if (early == HandshakeVerdict::HasOrigin)
        require(verdict == HandshakeVerdict::HasOrigin);
    if (early == HandshakeVerdict::Complete && part.size() < whole.size())
        require(verdict == HandshakeVerdict::Impatient || verdict == HandshakeVerdict::HasOrigin);
    if (verdict == HandshakeVerdict::Complete) {
        require(whole.endsWith("\r\n\r\n"));
        require(part.size() == whole.size() || early == HandshakeVerdict::Incomplete);
        const QByteArray named = whole.chopped(4) + "\r\noRiGiN \t: x\r\n\r\n";
        require(judgeHandshake(named) == HandshakeVerdict::HasOrigin);
    }
}

/// The frames' headers read the plain way, from a text that is all there.
bool areMasked(const QByteArray &stream)
{
    for (qsizetype at = 0; stream.size() - at >= 2;) {
        const quint8 second = static_cast<quint8>(stream[at + 1]);
        if (!(second & 0x80))
            return false;
        quint64 length = second & 0x7f;
        const qsizetype lengthSize = length == 127 ? 8 : length == 126 ? 2 : 0;
        if (stream.size() - at < 2 + lengthSize + 4)
            return true;
        if (lengthSize > 0)
            length = 0;
        for (qsizetype i = 0; i < lengthSize; ++i)
            length = length << 8 | static_cast<quint8>(stream[at + 2 + i]);
        at += 2 + lengthSize + 4;
        if (length > static_cast<quint64>(stream.size() - at))
            return true;
        at += static_cast<qsizetype>(length);
    }
    return true;
}

void checkMasks(const QByteArray &part, const QByteArray &whole)
{
    MaskCheck check;
    const bool early = check.take(part);
    require(early == areMasked(part));
    require(check.take(QByteArrayView(whole).sliced(part.size())) == areMasked(whole));
    require(early || !areMasked(whole));
}

void checkCommand(const QByteArray &bytes)
{
    const QString message = QString::fromUtf8(bytes);
    const auto command = readDeckCommand(message);
    const auto object = QJsonDocument::fromJson(message.toUtf8()).object();
    require(command.has_value() == object.value("cmd"_L1).isString());
    if (!command)
        return;
    require(!command->action || row(*command->action).rawValue == command->name);
    require(!command->action || !command->asksForState());
    // said again, it means the same
    const QJsonObject plain { { u"cmd"_s, command->name } };
    const auto again = readDeckCommand(QString::fromUtf8(QJsonDocument(plain).toJson()));
    require(again && again->action == command->action);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzedDataProvider input(bytes, size);
    const auto cut = input.ConsumeIntegral<quint16>();
    const QByteArray whole = QByteArray::fromStdString(input.ConsumeRemainingBytesAsString());
    const QByteArray part = whole.first(cut % (whole.size() + 1));
    checkHandshake(part, whole);
    checkMasks(part, whole);
    checkCommand(whole);
    return 0;
}
