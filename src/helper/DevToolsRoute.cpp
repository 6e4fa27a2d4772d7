#include "helper/DevToolsRoute.h"
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// A script that does not let go of its page is stopped after this, in milliseconds; nobody waits for it
/// then.
constexpr int evaluationBound = 3500;

QString literal(const QString &text)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray { text }).toJson(QJsonDocument::Compact)) + "[0]"_L1;
}

/// What the page evaluates. %1 and %2 are what its address starts with and contains, %3 is the script, %4
/// makes its requestAnimationFrame. All that may come of it is told as a value.
constexpr QStringView evaluation = uR"js((async () => {
    if (!location.href.startsWith(%1) || !location.href.includes(%2))
        return { gone: true };
    try {
        const value = await ((requestAnimationFrame) => (
%3
))((
%4
)());
        if (value === undefined || value === null)
            return { result: null };
        const result = String(value).toWellFormed();
        const size = new TextEncoder().encode(JSON.stringify(result)).length;
        return size > 256 * 1024 ? { error: "result too large" } : { result };
    } catch (error) {
        return { error: String(error).toWellFormed().slice(0, 1000) };
    }
})())js";

QString expressionOf(const QString &source, const QString &marker)
{
    static const QString frames = [] {
        QFile file(u":/helper/frames.js"_s);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }();
    return evaluation.arg(literal(meetOrigin), literal(marker), source, frames);
}

} // namespace

DevToolsRoute::DevToolsRoute(RelayConnection &connection)
    : BrowserRoute(connection)
{
    connect(&connection, &RelayConnection::announced, this, &DevToolsRoute::heard);
}

DevToolsRoute::~DevToolsRoute()
{
    // the browser outlives us, and so would the sessions
    for (const Session &session : std::as_const(m_sessions)) {
        std::ignore = m_connection.ask({ { u"method"_s, u"Target.detachFromTarget"_s },
                                         { u"params"_s, QJsonObject { { u"sessionId"_s, session.id } } } });
    }
}

QCoro::Task<DevToolsRoute::Result<QJsonObject>> DevToolsRoute::command(QString method, QJsonObject parameters,
                                                                       QString session)
{
    QJsonObject message { { u"method"_s, method }, { u"params"_s, parameters } };
    if (!session.isEmpty())
        message.insert("sessionId"_L1, session);
    const auto answer = co_await m_connection.ask(std::move(message));
    if (!answer)
        co_return std::unexpected(DevToolsFailure { answer.error() });
    co_return devToolsResult(*answer);
}

QCoro::Task<DevToolsRoute::Result<QList<DevToolsPage>>> DevToolsRoute::pages()
{
    const auto targets = co_await command(u"Target.getTargets"_s, {});
    if (!targets)
        co_return std::unexpected(targets.error());
    co_return devToolsPages(*targets);
}

QCoro::Task<BrowserRoute::FoundTab> DevToolsRoute::find(QString marker)
{
    const auto all = co_await pages();
    if (!all)
        co_return std::unexpected(all.error().text);
    for (const DevToolsPage &page : *all) {
        if (page.showsMeet(marker))
            co_return page.tab;
    }
    co_return std::nullopt;
}

QCoro::Task<std::expected<QStringList, QString>> DevToolsRoute::tabs()
{
    const auto all = co_await pages();
    if (!all)
        co_return std::unexpected(all.error().text);
    QStringList tabs;
    for (const DevToolsPage &page : *all)
        tabs.append(page.tab);
    co_return tabs;
}

QCoro::Task<DevToolsRoute::Result<QString>> DevToolsRoute::attach(QString tab)
{
    const QPointer self(this);
    const auto attached =
        co_await command(u"Target.attachToTarget"_s, { { u"targetId"_s, tab }, { u"flatten"_s, true } });
    if (!attached)
        co_return std::unexpected(attached.error());
    const QString session = attached->value("sessionId"_L1).toString();
    if (self)
        m_sessions.insert(tab, { session });
    co_return session;
}

QCoro::Task<DevToolsRoute::Result<DevToolsRoute::Session>> DevToolsRoute::sessionOf(QString tab,
                                                                                    bool needsWorld)
{
    const QPointer self(this);
    Session session = m_sessions.value(tab);
    if (session.id.isEmpty()) {
        const auto attached =
            co_await m_attaching.answer(tab, "attach to a tab", [this, tab] { return attach(tab); });
        if (!attached)
            co_return std::unexpected(attached.error());
        session.id = *attached;
    }
    if (!self || !needsWorld || session.world != 0)
        co_return session;
    const auto tree = co_await command(u"Page.getFrameTree"_s, {}, session.id);
    if (!self || !tree)
        co_return std::unexpected(tree ? DevToolsFailure {} : tree.error());
    const auto world = co_await command(
        u"Page.createIsolatedWorld"_s,
        { { u"frameId"_s, (*tree)["frameTree"_L1]["frame"_L1]["id"_L1] }, { u"worldName"_s, u"kestrel"_s } },
        session.id);
    if (!world)
        co_return std::unexpected(world.error());
    session.world = world->value("executionContextId"_L1).toInt();
    if (self)
        m_sessions.insert(tab, session);
    co_return session;
}

QCoro::Task<DevToolsRoute::Result<QJsonObject>> DevToolsRoute::evaluate(QString tab, QString expression)
{
    const QPointer self(this);
    // session and world may have gone since they were used last, and are made anew once
    for (bool isSecond = false;; isSecond = true) {
        const auto session = co_await sessionOf(tab, true);
        if (!self || (!session && (isSecond || !session.error().isSessionGone)))
            co_return std::unexpected(session ? DevToolsFailure {} : session.error());
        if (session) {
            auto answer = co_await command(u"Runtime.evaluate"_s,
                                           { { u"expression"_s, expression },
                                             { u"contextId"_s, session->world },
                                             { u"returnByValue"_s, true },
                                             { u"awaitPromise"_s, true },
                                             { u"userGesture"_s, true },
                                             { u"timeout"_s, evaluationBound } },
                                           session->id);
            if (!self || answer || isSecond || !(answer.error().isSessionGone || answer.error().isWorldGone))
                co_return answer;
            if (!answer.error().isSessionGone) {
                m_sessions[tab].world = 0;
                continue;
            }
        }
        m_sessions.remove(tab);
    }
}

QCoro::Task<BrowserRoute::RunAnswer> DevToolsRoute::run(QString tab, QString marker, QString source,
                                                        bool activate)
{
    const QPointer self(this);
    if (activate) {
        const auto raised = co_await raise(tab);
        if (!raised && raised.error().isTabGone)
            co_return Ran { true, {} };
        if (!raised || !self)
            co_return std::unexpected(raised ? QString() : raised.error().text);
    }
    if (source.trimmed().isEmpty())
        co_return Ran {};
    const auto answer = co_await evaluate(tab, expressionOf(source, marker));
    if (!answer && answer.error().isTabGone)
        co_return Ran { true, {} };
    if (!answer)
        co_return std::unexpected(answer.error().text);
    co_return ranInPage(*answer);
}

QCoro::Task<DevToolsRoute::Result<QJsonObject>> DevToolsRoute::raise(QString tab)
{
    const QPointer self(this);
    auto window = co_await command(u"Browser.getWindowForTarget"_s, { { u"targetId"_s, tab } });
    if (!self || !window)
        co_return window;
    if ((*window)["bounds"_L1]["windowState"_L1].toString() == "minimized"_L1) {
        co_await command(u"Browser.setWindowBounds"_s,
                         { { u"windowId"_s, window->value("windowId"_L1) },
                           { u"bounds"_s, QJsonObject { { u"windowState"_s, u"normal"_s } } } });
        if (!self)
            co_return window;
    }
    co_await command(u"Target.activateTarget"_s, { { u"targetId"_s, tab } });
    if (!self)
        co_return window;
    const auto session = co_await sessionOf(tab, false);
    if (!self || !session)
        co_return window;
    co_return co_await command(u"Page.bringToFront"_s, {}, session->id);
}

QCoro::Task<BrowserRoute::CloseAnswer> DevToolsRoute::close(QString tab, QString marker)
{
    const QPointer self(this);
    const auto all = co_await pages();
    if (!self || !all)
        co_return std::unexpected(all ? QString() : all.error().text);
    const bool isThere = std::ranges::any_of(
        *all, [&](const DevToolsPage &page) { return page.tab == tab && page.showsMeet(marker); });
    if (!isThere)
        co_return false;
    const auto closed = co_await command(u"Target.closeTarget"_s, { { u"targetId"_s, tab } });
    if (closed)
        co_return true;
    if (closed.error().isTabGone)
        co_return false;
    co_return std::unexpected(closed.error().text);
}

QCoro::Task<std::expected<void, QString>> DevToolsRoute::resizeWindow(QString tab, QSize size)
{
    const QPointer self(this);
    const auto window = co_await command(u"Browser.getWindowForTarget"_s, { { u"targetId"_s, tab } });
    if (!self || !window)
        co_return std::unexpected(window ? QString() : window.error().text);
    const QJsonValue id = window->value("windowId"_L1);
    const auto isExact = [size](const QJsonValue &bounds) {
        return bounds["width"_L1].toInt() == size.width() && bounds["height"_L1].toInt() == size.height();
    };
    QJsonValue bounds = window->value("bounds"_L1);
    if (bounds["windowState"_L1].toString() != "normal"_L1) {
        // state and size cannot be set in one go
        co_await command(
            u"Browser.setWindowBounds"_s,
            { { u"windowId"_s, id }, { u"bounds"_s, QJsonObject { { u"windowState"_s, u"normal"_s } } } });
        bounds = {};
    }
    if (isExact(bounds))
        co_return {};
    if (!self)
        co_return std::unexpected(QString());
    const auto resized = co_await command(
        u"Browser.setWindowBounds"_s,
        { { u"windowId"_s, id },
          { u"bounds"_s, QJsonObject { { u"width"_s, size.width() }, { u"height"_s, size.height() } } } });
    if (!self || !resized)
        co_return std::unexpected(resized ? QString() : resized.error().text);
    const auto after = co_await command(u"Browser.getWindowBounds"_s, { { u"windowId"_s, id } });
    if (!after)
        co_return std::unexpected(after.error().text);
    bounds = after->value("bounds"_L1);
    if (!isExact(bounds)) {
        co_return std::unexpected(u"The window is %1 by %2 large instead of %3 by %4"_s.arg(
            QString::number(bounds["width"_L1].toInt()), QString::number(bounds["height"_L1].toInt()),
            QString::number(size.width()), QString::number(size.height())));
    }
    co_return {};
}

void DevToolsRoute::heard(const QJsonObject &message)
{
    if (message.value("method"_L1).toString() != "Target.detachedFromTarget"_L1)
        return;
    const QString gone = message["params"_L1]["sessionId"_L1].toString();
    m_sessions.removeIf([&](const auto &entry) { return entry->id == gone; });
}

} // namespace kestrel
