#include "demo/ScriptedConsent.h"
#include <QCoro/QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QUrlQuery>
#include <QXmlStreamReader>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

struct ConsentForm
{
    QString action;
    QList<std::pair<QString, QString>> hiddenFields;
    QStringList accounts;
    QStringList decisions;
};

/// The page's one form. The sample's pages are well-formed XML.
std::expected<ConsentForm, QString> readForm(const QByteArray &page)
{
    QXmlStreamReader reader(page);
    ConsentForm form;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString name = attributes.value(u"name"_s).toString();
        const QString value = attributes.value(u"value"_s).toString();
        if (reader.name() == u"form")
            form.action = attributes.value(u"action"_s).toString();
        else if (reader.name() == u"input" && attributes.value(u"type"_s) == u"hidden")
            form.hiddenFields.emplaceBack(name, value);
        else if (reader.name() == u"input" && name == u"account")
            form.accounts.append(value);
        else if (reader.name() == u"button" && name == u"decision")
            form.decisions.append(value);
    }
    if (reader.hasError())
        return std::unexpected(u"The page cannot be read: "_s + reader.errorString());
    if (form.action.isEmpty())
        return std::unexpected(u"The page has no form"_s);
    return form;
}

bool isLoopback(const QUrl &url)
{
    return url.scheme() == u"http" && url.host() == u"127.0.0.1";
}

QNetworkRequest requestFor(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setTransferTimeout(30'000);
    return request;
}

int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QString failure(const QString &step, const QNetworkReply &reply)
{
    const int status = statusOf(reply);
    return u"%1: %2"_s.arg(step, status > 0 ? u"HTTP %1"_s.arg(status) : reply.errorString());
}

} // namespace

QCoro::Task<std::expected<void, QString>> press(ScriptedConsent consent)
{
    // meeting links come the same way as sign-in pages; a script has no business there
    if (!isLoopback(consent.page))
        co_return std::unexpected(u"Not a page of the sample Google: "_s + consent.page.toDisplayString());

    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);

    const std::unique_ptr<QNetworkReply> page(network.get(requestFor(consent.page)));
    co_await page.get();
    if (statusOf(*page) != 200)
        co_return std::unexpected(failure(u"The sign-in page"_s, *page));
    const auto form = readForm(page->readAll());
    if (!form)
        co_return std::unexpected(form.error());

    const QString decision = consent.isCancelled ? u"cancel"_s : u"allow"_s;
    if (!form->decisions.contains(decision))
        co_return std::unexpected(u"The page has no button \"%1\""_s.arg(decision));
    const QString account = consent.account.isEmpty() ? form->accounts.value(0) : consent.account;
    if (!form->accounts.contains(account))
        co_return std::unexpected(u"The page does not offer the account \"%1\""_s.arg(account));

    QUrlQuery fields;
    for (const auto &[name, value] : form->hiddenFields)
        fields.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
    fields.addQueryItem(u"account"_s, QString::fromLatin1(QUrl::toPercentEncoding(account)));
    fields.addQueryItem(u"decision"_s, decision);
    QNetworkRequest submission = requestFor(consent.page.resolved(QUrl(form->action)));
    if (!isLoopback(submission.url()))
        co_return std::unexpected(u"The form leads elsewhere: "_s + form->action);
    submission.setHeader(QNetworkRequest::ContentTypeHeader, u"application/x-www-form-urlencoded"_s);
    const std::unique_ptr<QNetworkReply> sent(
        network.post(submission, fields.toString(QUrl::FullyEncoded).toUtf8()));
    co_await sent.get();
    const QUrl target = sent->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (statusOf(*sent) != 302 || !isLoopback(target))
        co_return std::unexpected(failure(u"The consent"_s, *sent));

    const std::unique_ptr<QNetworkReply> last(network.get(requestFor(target)));
    co_await last.get();
    if (statusOf(*last) != 200)
        co_return std::unexpected(failure(u"The page after the consent"_s, *last));
    co_return std::expected<void, QString> {};
}

} // namespace kestrel::demo
