#include "demo/ConsentPage.h"
#include <QFile>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

QString resource(const QString &name)
{
    QFile file(u":/demo/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QByteArray page(const QString &title, const QString &content)
{
    QString text = resource(u"page.html"_s);
    text.replace(u"{{title}}"_s, title.toHtmlEscaped());
    text.replace(u"{{content}}"_s, content);
    return text.toUtf8();
}

QString initials(const QString &name)
{
    QString letters;
    for (const QString &word :
         name.split(u' ', Qt::SkipEmptyParts).first(std::min<qsizetype>(2, name.count(u' ') + 1)))
        letters += word.front().toUpper();
    return letters;
}

QString accountRow(const SampleAccount &account, bool isChosen)
{
    return uR"(<label class="account"><input type="radio" name="account" value="%1"%2/>)"
           R"(<span class="initials" aria-hidden="true">%3</span>)"
           R"(<span class="who"><span class="name">%4</span><span class="email">%1</span></span></label>)"_s
               .arg(account.email.toHtmlEscaped(), isChosen ? uR"( checked="checked")"_s : QString(),
                    initials(account.name).toHtmlEscaped(), account.name.toHtmlEscaped());
}

/// What a scope means to a person.
QString scopeInWords(const QString &scope)
{
    if (scope.endsWith(u"/auth/calendar.events.readonly"))
        return u"See the events on your calendars"_s;
    if (scope.endsWith(u"/auth/calendar.readonly"))
        return u"See the list of your calendars and their settings"_s;
    if (scope == u"openid")
        return u"Recognise you when you sign in again"_s;
    if (scope == u"email")
        return u"See your e-mail address"_s;
    return scope;
}

} // namespace

QByteArray consentPage(const QString &requestId, const QStringList &scopes,
                       const std::vector<SampleAccount> &accounts)
{
    QString rows;
    for (const SampleAccount &account : accounts)
        rows += accountRow(account, rows.isEmpty());
    QString wishes;
    for (const QString &scope : scopes)
        wishes += u"<li>%1</li>"_s.arg(scopeInWords(scope).toHtmlEscaped());

    QString content = resource(u"consent.html"_s);
    content.replace(u"{{request}}"_s, requestId.toHtmlEscaped());
    content.replace(u"{{accounts}}"_s, rows);
    content.replace(u"{{scopes}}"_s, wishes);
    return page(u"Kestrel’s sample Google: sign in"_s, content);
}

QByteArray refusalPage(const QString &reason)
{
    return page(u"Kestrel’s sample Google: no sign-in"_s,
                u"<h1>This sign-in cannot go on</h1><p class=\"lead\">%1</p>"
                "<p>Nothing was allowed. Close this page and start again in Kestrel.</p>"_s.arg(
                    reason.toHtmlEscaped()));
}

} // namespace kestrel::demo
