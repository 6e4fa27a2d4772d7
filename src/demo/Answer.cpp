#include "demo/Answer.h"
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

struct StatusNames
{
    int status;
    const char *phrase; ///< RFC 9110
    const char *apiName; ///< google.rpc.Code, where the API names one for it
};

constexpr StatusNames statusNames[] = {
    { 200, "OK", "" },
    { 302, "Found", "" },
    { 400, "Bad Request", "INVALID_ARGUMENT" },
    { 401, "Unauthorized", "UNAUTHENTICATED" },
    { 403, "Forbidden", "PERMISSION_DENIED" },
    { 404, "Not Found", "NOT_FOUND" },
    { 405, "Method Not Allowed", "" },
    { 410, "Gone", "" },
    { 411, "Length Required", "" },
    { 413, "Content Too Large", "" },
    { 429, "Too Many Requests", "RESOURCE_EXHAUSTED" },
    { 431, "Request Header Fields Too Large", "" },
    { 500, "Internal Server Error", "INTERNAL" },
    { 503, "Service Unavailable", "UNAVAILABLE" },
    { 505, "HTTP Version Not Supported", "" },
};

StatusNames namesOf(int status)
{
    for (const StatusNames &names : statusNames) {
        if (names.status == status)
            return names;
    }
    return { status, "Status", "" };
}

} // namespace

Answer Answer::json(const QJsonObject &object, int status)
{
    return { .status = status,
             .contentType = "application/json; charset=UTF-8",
             .body = QJsonDocument(object).toJson(QJsonDocument::Compact) };
}

Answer Answer::jsonText(QByteArray text)
{
    return { .status = 200, .contentType = "application/json; charset=UTF-8", .body = std::move(text) };
}

Answer Answer::html(QByteArray text, int status)
{
    // the pages carry all they need; nothing may be loaded or run from them
    return { .status = status,
             .contentType = "text/html; charset=utf-8",
             .body = std::move(text),
             .headers = { { "Content-Security-Policy",
                            "default-src 'none'; style-src 'unsafe-inline'; img-src data:" } } };
}

Answer Answer::redirect(const QByteArray &location)
{
    return {
        .status = 302, .contentType = "text/plain", .body = {}, .headers = { { "Location", location } }
    };
}

Answer Answer::apiError(int status, const QString &message, const QString &reason)
{
    const QJsonObject first { { u"message"_s, message },
                              { u"domain"_s, u"global"_s },
                              { u"reason"_s, reason } };
    QJsonObject error { { u"code"_s, status },
                        { u"message"_s, message },
                        { u"errors"_s, QJsonArray { first } } };
    const QString name = QString::fromLatin1(namesOf(status).apiName);
    if (!name.isEmpty())
        error.insert(u"status"_s, name);
    Answer answer = json({ { u"error"_s, error } }, status);
    if (status == 401)
        answer.headers.emplaceBack("WWW-Authenticate", "Bearer realm=\"sample\", error=\"invalid_token\"");
    return answer;
}

Answer Answer::oauthError(int status, const QString &error, const QString &description)
{
    return json({ { u"error"_s, error }, { u"error_description"_s, description } }, status);
}

QByteArray Answer::head(bool keepsAlive) const
{
    QByteArray text = "HTTP/1.1 " + QByteArray::number(status) + ' ' + namesOf(status).phrase
        + "\r\nContent-Type: " + contentType + "\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\nCache-Control: no-store\r\nConnection: " + (keepsAlive ? "keep-alive" : "close") + "\r\n";
    for (const auto &[name, value] : headers)
        text += name + ": " + value + "\r\n";
    return text + "\r\n";
}

} // namespace kestrel::demo
