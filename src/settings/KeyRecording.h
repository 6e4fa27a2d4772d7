#pragma once
#include "hotkeys/KeyRecorder.h"
#include <QtQml/qqml.h>

namespace kestrel {

/// KeyRecorder under the name that QML knows it by, since the control that shows it has its name there.
struct KeyRecording
{
    Q_GADGET
    QML_FOREIGN(KeyRecorder)
    QML_NAMED_ELEMENT(KeyRecording)
    QML_UNCREATABLE("made in C++")
};

} // namespace kestrel
