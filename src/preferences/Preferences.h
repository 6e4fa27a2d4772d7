#pragma once
#include <QObject>

namespace kestrel {

/// Every user setting, read from the store at each call and written at once. Main thread only.
class Preferences final : public QObject
{
    Q_OBJECT
};

} // namespace kestrel
