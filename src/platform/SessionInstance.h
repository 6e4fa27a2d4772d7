#pragma once
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>
#include <expected>
#include <functional>

namespace kestrel {

/// What a verb of the command line printed and how it ended.
struct VerbResult
{
    int exitCode = 0;
    QString output;
    QString errors;

    friend bool operator==(const VerbResult &, const VerbResult &) = default;
};

/// The one Kestrel of a login session (and data folder): who it is, and how a second one hands its verb over.
class SessionInstance : public QObject
{
    Q_OBJECT
public:
    enum class Claim {
        Owned, ///< this process is the instance now
        Taken, ///< another one is
        Unreachable, ///< there is no session bus
    };
    using VerbHandler = std::function<QCoro::Task<VerbResult>(QStringList arguments)>;

    using QObject::QObject;

    /// Takes the instance's name, and answers verbs of others with `handler` from then on.
    [[nodiscard]] virtual Claim claim(VerbHandler handler) = 0;

    /// Has the running instance carry out `arguments` (verb first); the error is a description. Waits as long
    /// as the verb takes, but not for whoever has the instance's name without being one.
    [[nodiscard]] virtual QCoro::Task<std::expected<VerbResult, QString>> handOver(QStringList arguments) = 0;

    /// Of the instance: tells all followers that its status may be another.
    virtual void announceChange() = 0;
    /// From now on changed() and busLost() come; to the instance itself busLost() comes anyway.
    virtual void follow() = 0;

Q_SIGNALS:
    /// The instance announced a change, came or went.
    void changed();
    /// There is no session bus any more; nothing follows.
    void busLost();
};

} // namespace kestrel
