#include "helper/DevToolsAnswers.h"
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr int noSuchSession = -32001;
constexpr int internalError = -32603; ///< an evaluation was stopped

} // namespace

bool DevToolsPage::showsMeet(const QString &marker) const
{
    return address.startsWith(meetOrigin) && address.contains(marker);
}

DevToolsResult<QJsonObject> devToolsResult(const QJsonObject &answer)
{
    const QJsonValue error = answer.value("error"_L1);
    if (!error.isObject())
        return answer.value("result"_L1).toObject();
    // Chromium numbers most of its errors alike and tells them apart by these texts
    DevToolsFailure failure { browserErrorText(error["message"_L1]) };
    if (error["code"_L1].toInt() == internalError)
        failure.text = u"script timed out"_s;
    failure.isSessionGone = error["code"_L1].toInt() == noSuchSession;
    failure.isWorldGone = failure.text.contains("Cannot find context"_L1);
    failure.isTabGone = failure.text.contains("No target with given id"_L1)
        || failure.text.contains("navigated or closed"_L1);
    return std::unexpected(failure);
}

QList<DevToolsPage> devToolsPages(const QJsonObject &targets)
{
    QList<DevToolsPage> pages;
    for (const QJsonValue target : targets.value("targetInfos"_L1).toArray()) {
        if (target["type"_L1].toString() == "page"_L1)
            pages.append({ target["targetId"_L1].toString(), target["url"_L1].toString() });
    }
    return pages;
}

BrowserRoute::RunAnswer ranInPage(const QJsonObject &evaluated)
{
    using Ran = BrowserRoute::Ran;
    if (const QJsonValue fault = evaluated.value("exceptionDetails"_L1); fault.isObject()) {
        // a syntax error, or an evaluation that was stopped
        const QString text = fault["exception"_L1]["description"_L1].toString();
        return std::unexpected(text.isEmpty() ? u"script timed out"_s
                                              : browserErrorText(text.trimmed().section(u'\n', 0, 0)));
    }
    const QJsonValue told = evaluated["result"_L1]["value"_L1];
    if (told["gone"_L1].toBool())
        return Ran { true, {} };
    if (const QJsonValue error = told["error"_L1]; error.isString())
        return std::unexpected(browserErrorText(error));
    const QJsonValue result = told["result"_L1];
    return result.isString() ? Ran { false, result.toString() } : Ran {};
}

} // namespace kestrel
