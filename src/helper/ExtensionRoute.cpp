#include "helper/ExtensionRoute.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The answer, or what went wrong on either side.
std::expected<QJsonObject, QString> checked(RelayConnection::Answer answer)
{
    if (answer && answer->contains("error"_L1))
        return std::unexpected(answer->value("error"_L1).toString(u"The browser reported an error"_s));
    return answer;
}

QString unknownAnswer()
{
    return u"The browser's extension answered in a way that is not known here"_s;
}

} // namespace

QCoro::Task<BrowserRoute::FoundTab> ExtensionRoute::find(QString marker)
{
    const auto answer =
        checked(co_await m_connection.ask({ { u"op"_s, u"find"_s }, { u"marker"_s, marker } }));
    if (!answer)
        co_return std::unexpected(answer.error());
    const QJsonValue tab = answer->value("tab"_L1);
    if (tab.isNull())
        co_return std::nullopt;
    if (!tab.isDouble())
        co_return std::unexpected(unknownAnswer());
    co_return QString::number(tab.toInteger());
}

QCoro::Task<BrowserRoute::RunAnswer> ExtensionRoute::run(QString tab, QString marker, QString source,
                                                         bool activate)
{
    const auto answer = checked(co_await m_connection.ask({ { u"op"_s, u"run"_s },
                                                            { u"tab"_s, tab.toLongLong() },
                                                            { u"marker"_s, marker },
                                                            { u"source"_s, source },
                                                            { u"activate"_s, activate } }));
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->value("gone"_L1).toBool())
        co_return Ran { true, {} };
    const QJsonValue result = answer->value("result"_L1);
    if (result.isNull())
        co_return Ran {};
    if (!result.isString())
        co_return std::unexpected(unknownAnswer());
    co_return Ran { false, result.toString() };
}

QCoro::Task<BrowserRoute::CloseAnswer> ExtensionRoute::close(QString tab, QString marker)
{
    const auto answer = checked(co_await m_connection.ask(
        { { u"op"_s, u"close"_s }, { u"tab"_s, tab.toLongLong() }, { u"marker"_s, marker } }));
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return !answer->value("gone"_L1).toBool();
}

QCoro::Task<std::expected<void, QString>> ExtensionRoute::open(QUrl url, QSize size)
{
    const auto answer =
        checked(co_await m_connection.ask({ { u"op"_s, u"open"_s },
                                            { u"url"_s, QString::fromLatin1(url.toEncoded()) },
                                            { u"width"_s, size.width() },
                                            { u"height"_s, size.height() } }));
    if (!answer)
        co_return std::unexpected(answer.error());
    if (!answer->value("opened"_L1).toBool())
        co_return std::unexpected(unknownAnswer());
    co_return {};
}

} // namespace kestrel
