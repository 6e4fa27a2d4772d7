#pragma once
#include <QDebug>
#include <QLoggingCategory>

namespace kestrel {

Q_DECLARE_LOGGING_CATEGORY(lcApp)
Q_DECLARE_LOGGING_CATEGORY(lcAuth)
Q_DECLARE_LOGGING_CATEGORY(lcCalendar)
Q_DECLARE_LOGGING_CATEGORY(lcAlerts)
Q_DECLARE_LOGGING_CATEGORY(lcMenubar)
Q_DECLARE_LOGGING_CATEGORY(lcBridge)

/// Sends Qt's messages to the journal when the process runs under one, else to stderr, one line a message.
/// The verbs of the command line raise `lowestLevel`, since their stderr belongs to their own errors.
void installLog(QtMsgType lowestLevel = QtInfoMsg);

/// Marks a log argument that no log may show: it prints as "<private>", whatever it holds.
template<typename T>
struct Private
{
    explicit Private(const T &) { }
};

template<typename T>
QDebug operator<<(QDebug debug, const Private<T> &)
{
    return debug << "<private>";
}

/// An error's text as a log may hold it: at most 300 characters of one line.
[[nodiscard]] QString errorForLog(const QString &text);

} // namespace kestrel
