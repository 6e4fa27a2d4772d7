// Lines of JSON as a browser's answers over DevTools, and as what the relay and the extension say.
#include "Require.h"
#include "helper/DevToolsAnswers.h"
#include "helper/ExtensionAnswers.h"
#include <QJsonDocument>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

/// Either gone, or a result, or none, or an error that says something.
void checkRun(const BrowserRoute::RunAnswer &ran)
{
    require(ran ? !ran->isGone || !ran->result : !ran.error().isEmpty());
}

void checkDevTools(const QJsonObject &message)
{
    const auto result = devToolsResult(message);
    if (!result) {
        require(!result.error().text.isEmpty());
        require(message.value("error"_L1).isObject());
    }
    const QJsonObject content = result.value_or(message);
    const auto pages = devToolsPages(content);
    for (const DevToolsPage &page : pages) {
        require(!page.showsMeet(u"meet.google.com/"_s) || QUrl(page.address).host() == "meet.google.com"_L1
                || !QUrl(page.address).isValid());
    }
    checkRun(ranInPage(content));
}

void checkExtension(const QJsonObject &message)
{
    const auto found = foundByExtension(message);
    if (!found)
        require(!found.error().isEmpty());
    else if (*found) {
        // the tab goes back to the extension as the number that it gave
        bool isNumber = false;
        const qint64 tab = (*found)->toLongLong(&isNumber);
        require(isNumber && message.value("tab"_L1) == QJsonValue(tab));
    } else {
        require(message.value("tab"_L1).isNull());
    }
    checkRun(ranByExtension(message));
    const auto closed = closedByExtension(message);
    require(closed || !closed.error().isEmpty());
    const auto opened = openedByExtension(message);
    require(opened ? message.value("opened"_L1).toBool() : !opened.error().isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray lines(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    for (const QByteArray &line : lines.split('\n')) {
        const auto document = QJsonDocument::fromJson(line);
        if (!document.isObject())
            continue;
        const QJsonObject message = document.object();
        if (const auto greeting = RelayGreeting::fromJson(message))
            require(message.value("relay"_L1).toInt() == 1);
        checkDevTools(message);
        checkExtension(message);
    }
    return 0;
}
