#include "command/DoctorVerb.h"
#include "base/Clock.h"
#include "command/DoctorReport.h"
#include "platform/LoginItem.h"
#include "platform/linux/BusPeer.h"

using namespace Qt::StringLiterals;

namespace kestrel {

QCoro::Task<VerbResult> doctorVerb(SessionInstance &instance, QString busName, const LoginItem &loginItem,
                                   CommandLine line)
{
    const auto result = co_await instance.handOver(line.forHandOver());
    if (result)
        co_return *result;
    const bool isThere = (co_await processOf(QDBusConnection::sessionBus(), busName)).has_value();
    DoctorReport report;
    report.time = SystemClock().now();
    report.verdict = u"No alert will fire."_s;
    report.findings = { { u"Kestrel"_s, Finding::State::Bad, result.error() },
                        sessionFinding(loginItem.state(), false) };
    co_return VerbResult { isThere ? ExitCode::Failed : ExitCode::NotRunning,
                           line.json ? doctorJson(report) : doctorText(report),
                           {} };
}

} // namespace kestrel
