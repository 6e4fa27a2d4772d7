#pragma once
#include <QObject>

namespace kestrel {

/// Ends the event loop on SIGTERM, SIGINT and SIGHUP. One object per process.
class TerminationSignals final : public QObject
{
    Q_OBJECT
public:
    explicit TerminationSignals(QObject *parent = nullptr);
};

} // namespace kestrel
