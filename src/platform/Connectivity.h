#pragma once
#include <QObject>

namespace kestrel {

/// Whether the machine has a network at all, as far as the desktop can tell. Where it cannot tell, it is
/// online.
class Connectivity : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual bool isOnline() const = 0;

Q_SIGNALS:
    void isOnlineChanged();
};

} // namespace kestrel
