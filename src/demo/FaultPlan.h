#pragma once
#include "demo/Answer.h"
#include <QJsonArray>
#include <QString>
#include <QStringView>
#include <expected>
#include <optional>
#include <vector>

namespace kestrel::demo {

/// One thing that goes wrong at a path.
struct Fault
{
    enum class Kind {
        Status, ///< an error status with an error body
        Slow, ///< the right answer, late
        Half, ///< half of the right answer
        Garbage, ///< called JSON, and is none
        Html, ///< a page, as a captive portal gives it
        Close, ///< no answer
        Drip, ///< the right answer byte by byte
        Huge, ///< right but for its size
        Redirect,
        Cookie, ///< the right answer, and a cookie
    };

    QString path; ///< percent-decoded; "*" at its end stands for any rest
    Kind kind = Kind::Status;
    int number = 0; ///< status, milliseconds, bytes, or milliseconds between bytes
    QString url; ///< of Redirect
    int timesLeft = 0; ///< 0: until it is cleared

    /// PATH=KIND[:ARGUMENT][*TIMES]
    [[nodiscard]] static std::expected<Fault, QString> fromCommandLine(const QString &text);
    /// {"path": …, "fault": KIND, "times": …} and the argument under its own name.
    [[nodiscard]] static std::expected<Fault, QString> fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;

    /// The answer that takes the right one's place, for the kinds that replace it.
    [[nodiscard]] std::optional<Answer> replacement(const QString &requestPath) const;
    /// What the other kinds make of the right answer.
    [[nodiscard]] Answer spoiled(Answer answer) const;
};

/// The armed faults. For one path they go off in the order in which they were added.
class FaultPlan final
{
public:
    void add(Fault fault) { m_faults.push_back(std::move(fault)); }
    void clear() { m_faults.clear(); }
    /// The fault of this request, counted down.
    [[nodiscard]] std::optional<Fault> take(const QString &path);
    [[nodiscard]] QJsonArray toJson() const;

private:
    std::vector<Fault> m_faults;
};

} // namespace kestrel::demo
