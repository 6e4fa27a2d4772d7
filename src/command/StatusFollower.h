#pragma once
#include "command/CommandLine.h"
#include "platform/SessionInstance.h"
#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QObject>

namespace kestrel {

/// Prints what a status verb says now, and again whenever that is another: a line each time, for panels. A
/// Kestrel that ends or comes is such a change too. Lives until the session bus goes, which ends the
/// application with ExitCode::Failed. The instance outlives it.
class StatusFollower final : public QObject
{
    Q_OBJECT
public:
    StatusFollower(SessionInstance &instance, const CommandLine &line);

private:
    void askLater();
    QCoro::Task<void> ask();
    void print(const QByteArray &line);

    SessionInstance &m_instance;
    CommandLine m_line;
    QByteArray m_printed;
    bool m_isAsking = false;
    bool m_asksAgain = false;
};

} // namespace kestrel
