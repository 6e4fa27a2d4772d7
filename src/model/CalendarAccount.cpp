#include "model/CalendarAccount.h"
#include "model/OptionalHash.h"
#include <QJsonValue>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Fault = std::optional<DecodingError>;

Fault readText(const QJsonObject &json, const QString &key, QString &text)
{
    const QJsonValue value = json.value(key);
    if (!value.isString())
        return DecodingError { key + u": expected a text"_s };
    text = value.toString();
    return {};
}

Fault readOptionalText(const QJsonObject &json, const QString &key, std::optional<QString> &text)
{
    const QJsonValue value = json.value(key);
    if (value.isUndefined() || value.isNull())
        return {};
    return readText(json, key, text.emplace());
}

Fault readLaunchMode(const QJsonObject &json, const QString &key, MeetLaunchMode &mode)
{
    QString raw;
    if (auto fault = readText(json, key, raw))
        return fault;
    const auto known = meetLaunchModeFromRaw(raw);
    if (!known)
        return DecodingError { key + u": unknown launch mode "_s + raw };
    mode = *known;
    return {};
}

Fault readTexts(const QJsonObject &json, const QString &key, QMap<QString, QString> &texts)
{
    const QJsonValue value = json.value(key);
    if (!value.isObject())
        return DecodingError { key + u": expected an object"_s };
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!entry.value().isString())
            return DecodingError { key + u'.' + entry.key() + u": expected a text"_s };
        texts.insert(entry.key(), entry.value().toString());
    }
    return {};
}

} // namespace

QString rawValue(MeetLaunchMode mode)
{
    return mode == MeetLaunchMode::Tab ? u"tab"_s : u"popup"_s;
}

std::optional<MeetLaunchMode> meetLaunchModeFromRaw(const QString &raw)
{
    for (const MeetLaunchMode mode : allMeetLaunchModes) {
        if (raw == rawValue(mode))
            return mode;
    }
    return {};
}

QJsonObject CalendarAccount::toJson() const
{
    QJsonObject overrides;
    for (auto entry = calendarColorOverrides.begin(); entry != calendarColorOverrides.end(); ++entry)
        overrides.insert(entry.key(), entry.value());

    QJsonObject json {
        { u"id"_s, id },
        { u"providerID"_s, providerID },
        { u"displayName"_s, displayName },
        { u"meetLaunchMode"_s, rawValue(meetLaunchMode) },
        { u"calendarColorOverrides"_s, overrides },
    };
    if (email)
        json.insert(u"email"_s, *email);
    return json;
}

std::expected<CalendarAccount, DecodingError> CalendarAccount::fromJson(const QJsonObject &json)
{
    CalendarAccount account;
    Fault fault = readText(json, u"id"_s, account.id);
    if (!fault)
        fault = readText(json, u"providerID"_s, account.providerID);
    if (!fault)
        fault = readOptionalText(json, u"email"_s, account.email);
    if (!fault)
        fault = readText(json, u"displayName"_s, account.displayName);
    if (!fault)
        fault = readLaunchMode(json, u"meetLaunchMode"_s, account.meetLaunchMode);
    if (!fault)
        fault = readTexts(json, u"calendarColorOverrides"_s, account.calendarColorOverrides);
    if (fault)
        return std::unexpected(*fault);
    return account;
}

size_t qHash(const CalendarAccount &account, size_t seed)
{
    seed = qHashMulti(seed, account.id, account.providerID, optionalHash(account.email), account.displayName,
                      rawValue(account.meetLaunchMode), account.calendarColorOverrides.size());
    const auto &overrides = account.calendarColorOverrides;
    for (auto entry = overrides.begin(); entry != overrides.end(); ++entry)
        seed = qHashMulti(seed, entry.key(), entry.value());
    return seed;
}

size_t qHash(const ProviderCalendar &calendar, size_t seed)
{
    return qHashMulti(seed, calendar.id, calendar.title, calendar.isPrimary, optionalHash(calendar.colorHex));
}

} // namespace kestrel
