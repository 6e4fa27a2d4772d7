#include "helper/ExtensionRoute.h"
#include "helper/ExtensionAnswers.h"

using namespace Qt::StringLiterals;

namespace kestrel {

QCoro::Task<BrowserRoute::FoundTab> ExtensionRoute::find(QString marker)
{
    co_return foundByExtension(
        co_await m_connection.ask({ { u"op"_s, u"find"_s }, { u"marker"_s, marker } }));
}

QCoro::Task<BrowserRoute::RunAnswer> ExtensionRoute::run(QString tab, QString marker, QString source,
                                                         bool activate)
{
    co_return ranByExtension(co_await m_connection.ask({ { u"op"_s, u"run"_s },
                                                         { u"tab"_s, tab.toLongLong() },
                                                         { u"marker"_s, marker },
                                                         { u"source"_s, source },
                                                         { u"activate"_s, activate } }));
}

QCoro::Task<BrowserRoute::CloseAnswer> ExtensionRoute::close(QString tab, QString marker)
{
    co_return closedByExtension(co_await m_connection.ask(
        { { u"op"_s, u"close"_s }, { u"tab"_s, tab.toLongLong() }, { u"marker"_s, marker } }));
}

QCoro::Task<std::expected<void, QString>> ExtensionRoute::open(QUrl url, QSize size)
{
    co_return openedByExtension(
        co_await m_connection.ask({ { u"op"_s, u"open"_s },
                                    { u"url"_s, QString::fromLatin1(url.toEncoded()) },
                                    { u"width"_s, size.width() },
                                    { u"height"_s, size.height() } }));
}

} // namespace kestrel
