#pragma once
#include "platform/KeyMonitor.h"

namespace kestrel {

/// Types and clicks what a test tells it to, while it is running.
class FakeKeyMonitor final : public KeyMonitor
{
public:
    void start() override { isRunning = true; }
    void stop() override { isRunning = false; }

    void type(quint32 keyCode, quint32 modifiers)
    {
        if (isRunning)
            Q_EMIT keyPressed(keyCode, modifiers);
    }
    void click()
    {
        if (isRunning)
            Q_EMIT mousePressed();
    }

    bool isRunning = false;
};

} // namespace kestrel
