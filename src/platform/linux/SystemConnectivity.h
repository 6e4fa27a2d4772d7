#pragma once
#include "platform/Connectivity.h"

namespace kestrel {

/// What NetworkManager, or GLib where that is not there, says about the network. Asks for it at the first
/// question only: loading the back end talks to the system bus, and start-up need not wait for that.
class SystemConnectivity final : public Connectivity
{
    Q_OBJECT
public:
    using Connectivity::Connectivity;

    [[nodiscard]] bool isOnline() const override;

private:
    void follow();

    mutable bool m_isLoaded = false;
    mutable bool m_wasOnline = true;
};

} // namespace kestrel
