#include "meet/MeetStateJSON.h"
#include "meet/MeetState.h"
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace kestrel {

std::expected<MeetStateJSON, DecodingError> decodeMeetState(const QByteArray &json)
{
    MeetStateJSON state;
    const std::pair<QLatin1StringView, bool &> members[] {
        { "mic"_L1, state.mic },     { "cam"_L1, state.cam },     { "hand"_L1, state.hand },
        { "share"_L1, state.share }, { "found"_L1, state.found },
    };
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonObject object = document.object();
    if (object.size() != qsizetype(std::size(members)))
        return std::unexpected(DecodingError { u"not an object of five members"_s });
    for (const auto &[name, member] : members) {
        const QJsonValue value = object.value(name);
        if (!value.isBool())
            return std::unexpected(DecodingError { name + u" is no boolean"_s });
        member = value.toBool();
    }
    return state;
}

void apply(const MeetStateJSON &json, MeetState &state)
{
    state.setInMeeting(json.found);
    state.setMicOn(json.mic);
    state.setCameraOn(json.cam);
    state.setHandRaised(json.hand);
    state.setSharing(json.share);
}

} // namespace kestrel
