#include "demo/FaultPlan.h"
#include <QJsonDocument>
#include <QUrl>
#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

struct KindRow
{
    Fault::Kind kind;
    const char *name;
    const char *argument; ///< its name in JSON; empty when the kind takes none
    int least;
    int most;
    int standard; ///< without an argument; less than `least`: the argument is required
};

constexpr int anyNumber = std::numeric_limits<int>::max();
constexpr KindRow kindRows[] = {
    { Fault::Kind::Status, "status", "status", 400, 599, 0 },
    { Fault::Kind::Slow, "slow", "milliseconds", 0, anyNumber, 5000 },
    { Fault::Kind::Half, "half", "", 0, 0, 0 },
    { Fault::Kind::Garbage, "garbage", "", 0, 0, 0 },
    { Fault::Kind::Html, "html", "", 0, 0, 0 },
    { Fault::Kind::Close, "close", "", 0, 0, 0 },
    { Fault::Kind::Drip, "drip", "milliseconds", 0, anyNumber, 0 },
    { Fault::Kind::Huge, "huge", "bytes", 100, 1 << 30, 50'000'000 },
    { Fault::Kind::Redirect, "redirect", "url", 0, 0, 0 },
    { Fault::Kind::Cookie, "cookie", "", 0, 0, 0 },
};

const KindRow *rowNamed(const QString &name)
{
    const auto row = std::ranges::find_if(
        kindRows, [&](const KindRow &each) { return name == QLatin1StringView(each.name); });
    return row == std::ranges::end(kindRows) ? nullptr : row;
}

const KindRow &rowOf(Fault::Kind kind)
{
    return *std::ranges::find(kindRows, kind, &KindRow::kind);
}

/// The reason that the Calendar API gives with a status.
QString apiReason(int status)
{
    switch (status) {
    case 401:
        return u"authError"_s;
    case 403:
    case 429:
        return u"rateLimitExceeded"_s;
    case 404:
        return u"notFound"_s;
    case 410:
        return u"fullSyncRequired"_s;
    default:
        return status < 500 ? u"badRequest"_s : u"backendError"_s;
    }
}

Answer statusAnswer(const QString &path, int status)
{
    if (path == u"/token" || path == u"/revoke") {
        const QString error = status == 401 ? u"invalid_client"_s
            : status < 500                  ? u"invalid_grant"_s
                                            : u"internal_failure"_s;
        return Answer::oauthError(status, error, u"Sample fault"_s);
    }
    return Answer::apiError(status, u"Sample fault %1"_s.arg(status), apiReason(status));
}

/// An empty calendar that is too long: only its size is wrong with it.
QByteArray hugeBody(int size)
{
    const QByteArray start = R"({"kind":"calendar#events","items":[],"padding":")";
    const QByteArray end = R"("})";
    return start + QByteArray(size - start.size() - end.size(), 'x') + end;
}

} // namespace

std::expected<Fault, QString> Fault::fromCommandLine(const QString &text)
{
    const qsizetype equals = text.indexOf(u'=');
    if (equals < 0)
        return std::unexpected(u"A fault is PATH=KIND[:ARGUMENT][*TIMES], not \"%1\""_s.arg(text));
    QJsonObject object { { u"path"_s, text.first(equals) } };

    QString rest = text.mid(equals + 1);
    bool isNumber = false;
    const qsizetype star = rest.lastIndexOf(u'*');
    const int times = star < 0 ? 0 : QStringView(rest).mid(star + 1).toInt(&isNumber);
    if (isNumber) {
        object.insert(u"times"_s, times);
        rest.truncate(star);
    }

    const QString kindName = rest.section(u':', 0, 0);
    object.insert(u"fault"_s, kindName);
    const QString argument = rest.section(u':', 1);
    const KindRow *row = rowNamed(kindName);
    if (row && !argument.isEmpty()) {
        const int number = argument.toInt(&isNumber);
        object.insert(QString::fromLatin1(*row->argument ? row->argument : "argument"),
                      isNumber ? QJsonValue(number) : QJsonValue(argument));
    }
    return fromJson(object);
}

std::expected<Fault, QString> Fault::fromJson(const QJsonObject &object)
{
    Fault fault;
    fault.path = object.value(u"path").toString();
    if (!fault.path.startsWith(u'/'))
        return std::unexpected(u"A fault needs a \"path\" that starts with a slash"_s);
    const QString kindName = object.value(u"fault").toString();
    const KindRow *row = rowNamed(kindName);
    if (!row)
        return std::unexpected(u"No fault is called \"%1\""_s.arg(kindName));
    fault.kind = row->kind;

    const QString argument = QString::fromLatin1(row->argument);
    for (const QString &key : object.keys()) {
        if (key != u"path" && key != u"fault" && key != u"times" && key != argument)
            return std::unexpected(u"\"%1\" takes no \"%2\""_s.arg(kindName, key));
    }

    const QJsonValue times = object.value(u"times");
    fault.timesLeft = times.toInt(0);
    if (!times.isUndefined() && fault.timesLeft < 1)
        return std::unexpected(u"\"times\" is a number from 1"_s);

    if (row->kind == Kind::Redirect) {
        fault.url = object.value(argument).toString();
        const QUrl url(fault.url, QUrl::StrictMode);
        if (!url.isValid() || url.isRelative())
            return std::unexpected(u"\"redirect\" needs a whole \"url\""_s);
    } else if (!argument.isEmpty()) {
        const QJsonValue number = object.value(argument);
        fault.number = number.isUndefined() ? row->standard : number.toInt(-1);
        if (fault.number < row->least || fault.number > row->most) {
            return std::unexpected(u"\"%1\" needs \"%2\" from %3 to %4"_s.arg(kindName, argument)
                                       .arg(row->least)
                                       .arg(row->most));
        }
    }
    return fault;
}

QJsonObject Fault::toJson() const
{
    const KindRow &row = rowOf(kind);
    QJsonObject object { { u"path"_s, path }, { u"fault"_s, QString::fromLatin1(row.name) } };
    if (timesLeft > 0)
        object.insert(u"times"_s, timesLeft);
    if (*row.argument)
        object.insert(QString::fromLatin1(row.argument), kind == Kind::Redirect ? QJsonValue(url) : number);
    return object;
}

std::optional<Answer> Fault::replacement(const QString &requestPath) const
{
    switch (kind) {
    case Kind::Status:
        return statusAnswer(requestPath, number);
    case Kind::Garbage:
        return Answer::jsonText("{\"items\": [{\"id\": \"sample\", \xff\xfe }}} and so on");
    case Kind::Html:
        return Answer::html(
            "<!DOCTYPE html><title>Sample Hotel</title><p>Accept our terms to go online.</p>");
    case Kind::Close:
        return Answer { .contentType = {}, .body = {}, .delivery = Answer::Delivery::Nothing };
    case Kind::Huge:
        return Answer::jsonText(hugeBody(number));
    case Kind::Redirect:
        return Answer::redirect(QUrl(url).toEncoded());
    case Kind::Slow:
    case Kind::Half:
    case Kind::Drip:
    case Kind::Cookie:
        return {};
    }
    Q_UNREACHABLE();
}

Answer Fault::spoiled(Answer answer) const
{
    if (kind == Kind::Slow) {
        answer.delay = std::chrono::milliseconds(number);
    } else if (kind == Kind::Half) {
        answer.delivery = Answer::Delivery::Half;
    } else if (kind == Kind::Drip) {
        answer.delivery = Answer::Delivery::ByteByByte;
        answer.byteInterval = std::chrono::milliseconds(number);
    } else if (kind == Kind::Cookie) {
        answer.headers.emplaceBack("Set-Cookie", "sample=crumb; Path=/");
    }
    return answer;
}

std::optional<Fault> FaultPlan::take(const QString &path)
{
    const auto isAt = [&](const Fault &fault) {
        return fault.path.endsWith(u'*') ? path.startsWith(QStringView(fault.path).chopped(1))
                                         : path == fault.path;
    };
    const auto found = std::ranges::find_if(m_faults, isAt);
    if (found == m_faults.end())
        return {};
    Fault fault = *found;
    if (fault.timesLeft == 1)
        m_faults.erase(found);
    else if (fault.timesLeft > 1)
        --found->timesLeft;
    return fault;
}

QJsonArray FaultPlan::toJson() const
{
    QJsonArray faults;
    for (const Fault &fault : m_faults)
        faults.append(fault.toJson());
    return faults;
}

} // namespace kestrel::demo
