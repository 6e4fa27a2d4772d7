#pragma once
#include "preferences/Preferences.h"
#include <QtQml/qqml.h>

namespace kestrel {

/// Lets QML bind to the preferences, whose room knows nothing of QML.
struct PreferencesForQml
{
    Q_GADGET
    QML_FOREIGN(kestrel::Preferences)
    QML_NAMED_ELEMENT(Preferences)
    QML_UNCREATABLE("app/ makes it")
};

} // namespace kestrel
