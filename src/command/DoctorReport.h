#pragma once
#include "base/Instant.h"
#include "platform/LoginItem.h"
#include <QList>
#include <QString>

namespace kestrel {

/// One thing that was looked at. The texts hold nothing private: no address, title, calendar, token or path.
struct Finding
{
    enum class State {
        Good,
        Warning, ///< something is missing, but alerts come all the same
        Bad, ///< it keeps alerts from coming or from being seen
    };

    QString section;
    State state = State::Good;
    QString text;
    QString advice {}; ///< what to do about it; may be empty

    friend bool operator==(const Finding &, const Finding &) = default;
};

/// Whether the next alert will fire and be seen.
struct DoctorReport
{
    struct Alert
    {
        Instant due;
        Instant start; ///< of the meetings
        qsizetype meetings = 0;
        bool isPrimary = true; ///< the one at the lead time, not the one a minute before
    };

    Instant time;
    QString verdict; ///< a sentence
    QList<Alert> alerts; ///< the next ones, in their order
    QList<Finding> findings; ///< those of one section together

    /// No finding is bad.
    [[nodiscard]] bool isGood() const;
};

/// For a terminal and a bug report: the verdict, and a line or two for each finding.
[[nodiscard]] QString doctorText(const DoctorReport &report);

/// docs/doctor.md describes the keys.
[[nodiscard]] QString doctorJson(const DoctorReport &report);

/// Whether Kestrel will be there tomorrow. `isOffMeant`: the person does not want it to be.
[[nodiscard]] Finding sessionFinding(LoginItemState state, bool isOffMeant);

/// "14:25:00" on the day of `now`, else with the day before it; local time.
[[nodiscard]] QString clockText(Instant instant, Instant now);

} // namespace kestrel
