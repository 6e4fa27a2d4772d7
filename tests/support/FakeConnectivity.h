#pragma once
#include "platform/Connectivity.h"

namespace kestrel {

class FakeConnectivity final : public Connectivity
{
    Q_OBJECT
public:
    [[nodiscard]] bool isOnline() const override { return m_isOnline; }

    void setOnline(bool online)
    {
        m_isOnline = online;
        Q_EMIT isOnlineChanged();
    }

private:
    bool m_isOnline = true;
};

} // namespace kestrel
