// Any text as what a page script gives back: the call's state, or the label of the button that was pressed.
#include "Require.h"
#include "hotkeys/HotkeyAction.h"
#include "meet/MeetHUDContent.h"
#include "meet/MeetState.h"
#include "meet/MeetStateJSON.h"
#include <QJsonDocument>
#include <QJsonObject>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

void checkState(const QByteArray &json)
{
    const auto state = decodeMeetState(json);
    if (!state) {
        require(!state.error().description.isEmpty());
        return;
    }
    const QJsonObject said { { u"mic"_s, state->mic },
                             { u"cam"_s, state->cam },
                             { u"hand"_s, state->hand },
                             { u"share"_s, state->share },
                             { u"found"_s, state->found } };
    require(QJsonDocument::fromJson(json).object() == said);
    MeetState shown;
    apply(*state, shown);
    require(shown.inMeeting() == state->found && shown.micOn() == state->mic && shown.cameraOn() == state->cam
            && shown.handRaised() == state->hand && shown.sharing() == state->share);
}

void checkLabel(const QString &label)
{
    for (const auto &[action, rawValue, preferenceKey, defaultHotkey, identifier] : hotkeyActions()) {
        const auto content = hudContent(action, label);
        if (action == HotkeyAction::join)
            require(content == MeetHUDContent());
        else
            require(content.symbol.isEmpty() != content.emoji.isEmpty());
        require(content.symbol.isEmpty() || !hudSymbolText(content.symbol).isEmpty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray result(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    checkState(result);
    checkLabel(QString::fromUtf8(result));
    return 0;
}
