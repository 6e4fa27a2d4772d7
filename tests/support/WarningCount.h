#pragma once
#include <QString>
#include <QtGlobal>

namespace kestrel {

/// Counts while it lives, and lets the messages through.
class WarningCount final
{
public:
    WarningCount()
    {
        seen = 0;
        before = qInstallMessageHandler([](QtMsgType type, const auto &where, const QString &text) {
            seen += type == QtDebugMsg || type == QtInfoMsg ? 0 : 1;
            before(type, where, text);
        });
    }
    ~WarningCount() { qInstallMessageHandler(before); }
    WarningCount(const WarningCount &) = delete;
    WarningCount &operator=(const WarningCount &) = delete;

    static inline int seen = 0;

private:
    static inline QtMessageHandler before = nullptr;
};

} // namespace kestrel
