#include "command/DoctorReport.h"
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QDateTime localTime(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count());
}

QChar symbolOf(Finding::State state)
{
    switch (state) {
    case Finding::State::Good:
        return u'✓';
    case Finding::State::Warning:
        return u'!';
    case Finding::State::Bad:
        return u'✗';
    }
    std::unreachable();
}

QLatin1StringView keyOf(Finding::State state)
{
    switch (state) {
    case Finding::State::Good:
        return "good"_L1;
    case Finding::State::Warning:
        return "warning"_L1;
    case Finding::State::Bad:
        return "bad"_L1;
    }
    std::unreachable();
}

/// Some of it comes from other programs: nothing that a terminal would act on.
QString plain(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return text;
}

/// In lines of 100 characters, all but the first behind `indent`.
QString wrapped(const QString &text, const QString &indent)
{
    const qsizetype room = 100 - indent.size();
    QString lines;
    qsizetype used = 0;
    for (const QString &word : text.split(u' ')) {
        if (used > 0 && used + 1 + word.size() > room) {
            lines += u'\n' + indent;
            used = 0;
        } else if (used > 0) {
            lines += u' ';
            ++used;
        }
        lines += word;
        used += word.size();
    }
    return lines;
}

} // namespace

bool DoctorReport::isGood() const
{
    return std::ranges::none_of(findings,
                                [](const Finding &finding) { return finding.state == Finding::State::Bad; });
}

QString clockText(Instant instant, Instant now)
{
    const QDateTime time = localTime(instant);
    return time.toString(time.date() == localTime(now).date() ? u"HH:mm:ss"_s : u"yyyy-MM-dd HH:mm:ss"_s);
}

QString doctorText(const DoctorReport &report)
{
    qsizetype width = 0;
    for (const Finding &finding : report.findings)
        width = std::max(width, finding.section.size());
    QString text = (report.isGood() ? u"✓ "_s : u"✗ "_s) + plain(report.verdict) + u"\n\n"_s;
    const QString indent(width + 6, u' ');
    QString section;
    for (const Finding &finding : report.findings) {
        const QString label = finding.section == section ? QString() : finding.section;
        section = finding.section;
        text += u"  "_s + label.leftJustified(width) + u"  "_s + symbolOf(finding.state) + u' '
            + wrapped(plain(finding.text), indent) + u'\n';
        if (!finding.advice.isEmpty())
            text += indent + u"→ "_s + wrapped(plain(finding.advice), indent + u"  "_s) + u'\n';
    }
    return text;
}

QString doctorJson(const DoctorReport &report)
{
    QJsonArray alerts;
    for (const DoctorReport::Alert &alert : report.alerts) {
        alerts.append(QJsonObject { { u"due"_s, toInternetDateTimeWithMilliseconds(alert.due) },
                                    { u"start"_s, toInternetDateTimeWithMilliseconds(alert.start) },
                                    { u"meetings"_s, alert.meetings },
                                    { u"kind"_s, alert.isPrimary ? u"lead"_s : u"oneMinute"_s } });
    }
    QJsonArray findings;
    for (const Finding &finding : report.findings) {
        findings.append(QJsonObject {
            { u"section"_s, finding.section },
            { u"state"_s, keyOf(finding.state) },
            { u"text"_s, plain(finding.text) },
            { u"advice"_s,
              finding.advice.isEmpty() ? QJsonValue::Null : QJsonValue(plain(finding.advice)) } });
    }
    const QJsonObject all { { u"time"_s, toInternetDateTimeWithMilliseconds(report.time) },
                            { u"good"_s, report.isGood() },
                            { u"verdict"_s, plain(report.verdict) },
                            { u"alerts"_s, alerts },
                            { u"findings"_s, findings } };
    return QString::fromUtf8(QJsonDocument(all).toJson());
}

Finding sessionFinding(LoginItemState state, bool isOffMeant)
{
    const auto section = u"Session"_s;
    const auto missing = u"Kestrel does not start with it"_s;
    switch (state) {
    case LoginItemState::On:
        return { section, Finding::State::Good, u"Kestrel starts with it"_s };
    case LoginItemState::SwitchedOff:
        return { section, Finding::State::Warning, missing + u": the desktop's settings say so"_s };
    case LoginItemState::Ineffective:
        return { section, Finding::State::Warning, missing + u": it is not installed"_s };
    case LoginItemState::Off:
        break;
    }
    if (isOffMeant)
        return { section, Finding::State::Good, missing };
    return { section, Finding::State::Warning, missing, u"Kestrel's settings can change that."_s };
}

} // namespace kestrel
