#pragma once
#include "auth/AuthErrors.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <chrono>
#include <expected>

namespace kestrel {

/// Receives the one redirect of a browser sign-in on 127.0.0.1, answers the browser, and stops. Main thread only.
class LoopbackServer final : public QObject
{
    Q_OBJECT
public:
    struct Callback
    {
        QString code;
        QString state;

        friend bool operator==(const Callback &, const Callback &) = default;
    };
};

} // namespace kestrel
