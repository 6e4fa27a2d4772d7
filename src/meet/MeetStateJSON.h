#pragma once
#include "base/DecodingError.h"
#include <QByteArray>
#include <expected>

namespace kestrel {

class MeetState;

/// What the state script answers.
struct MeetStateJSON
{
    bool mic = false;
    bool cam = false;
    bool hand = false;
    bool share = false;
    bool found = false; ///< there was a microphone or camera button

    friend bool operator==(const MeetStateJSON &, const MeetStateJSON &) = default;
};

/// An object of exactly these five booleans, else an error.
[[nodiscard]] std::expected<MeetStateJSON, DecodingError> decodeMeetState(const QByteArray &json);

void apply(const MeetStateJSON &json, MeetState &state);

} // namespace kestrel
