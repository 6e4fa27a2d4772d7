#include "helper/MeetTabs.h"
#include "helper/RelayDirectory.h"
#include "meet/protocol/StateScript.h"
#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto searchPatience = 1000ms;
constexpr auto scriptPatience = 3s;
constexpr auto closePatience = 5s;

/// Tells apart what goes to different places.
QString keyOf(const BrowserRoute *route, const QString &text)
{
    return QString::number(reinterpret_cast<quintptr>(route)) + u' ' + text;
}

} // namespace

MeetTabs::MeetTabs(RelayDirectory &directory)
    : m_directory(directory)
{
}

QCoro::Task<std::expected<std::optional<MeetTabs::Found>, QString>> MeetTabs::find(QString marker)
{
    struct Search
    {
        QPointer<BrowserRoute> route;
        Awaited<BrowserRoute::FoundTab> answer;
    };
    QList<Search> searches;
    for (const auto &route : co_await m_directory.routes()) {
        auto answer = m_searches.answer(keyOf(route, marker), "look for a Meet tab",
                                        [route, marker] { return route->find(marker); });
        searches.append({ route, answer });
    }
    QElapsedTimer elapsed;
    elapsed.start();
    std::optional<QString> fault;
    for (const Search &search : searches) {
        const auto patience = search.route && search.route->isSilent
            ? 0ms
            : std::max(0ms, searchPatience - std::chrono::milliseconds(elapsed.elapsed()));
        const auto answer = co_await within(patience, search.answer);
        if (answer && *answer && **answer && search.route)
            co_return Found { search.route, ***answer };
        if (!search.route || !search.route->isOpen())
            continue; // a browser that has gone has no tab
        if (answer && !*answer && !fault)
            fault = answer->error();
        if (answer)
            continue;
        fault = u"The browser does not answer"_s;
        search.route->isSilent = true;
        search.answer.then([route = search.route] {
            if (route)
                route->isSilent = false;
        });
    }
    if (fault)
        co_return std::unexpected(*fault);
    co_return std::nullopt;
}

QCoro::Task<HelperScriptReply> MeetTabs::run(QString marker, QString source, bool activate)
{
    const auto found = co_await find(marker);
    if (!found)
        co_return HelperScriptReply { false, {}, found.error() };
    if (!*found)
        co_return HelperScriptReply {};
    const auto &[route, tab] = **found;
    const auto start = [=] { return route->run(tab, marker, source, activate); };
    // A poll that its page keeps waiting is not joined by another: dialogs stay open for minutes.
    const bool isPoll = !activate && source == stateScript;
    const auto answer = co_await within(scriptPatience,
                                        isPoll ? m_polls.answer(keyOf(route, tab), "poll", start)
                                               : started("run a page script", start()));
    if (!answer)
        co_return HelperScriptReply { false, {}, u"script timed out"_s };
    if (!*answer)
        co_return HelperScriptReply { false, {}, answer->error() };
    if ((*answer)->isGone)
        co_return HelperScriptReply {};
    co_return HelperScriptReply { true, (*answer)->result, {} };
}

QCoro::Task<HelperReply> MeetTabs::close(QString marker)
{
    const auto found = co_await find(marker);
    if (!found)
        co_return HelperReply { false, found.error() };
    if (!*found)
        co_return HelperReply {};
    const auto &[route, tab] = **found;
    const auto answer = co_await within(closePatience, started("close a tab", route->close(tab, marker)));
    if (!answer)
        co_return HelperReply { false, u"The tab did not close in time"_s };
    if (!*answer)
        co_return HelperReply { false, answer->error() };
    co_return HelperReply { **answer, {} };
}

} // namespace kestrel
