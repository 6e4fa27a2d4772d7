#include "auth/JsonReader.h"
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace kestrel {

JsonReader::JsonReader(const QByteArray &json)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        fail(u"Not JSON at byte %1: %2"_s.arg(error.offset).arg(error.errorString()));
    else if (!document.isObject())
        fail(u"Not a JSON object"_s);
    m_object = document.object();
}

QString JsonReader::string(QLatin1StringView name)
{
    if (isAbsent(name))
        fail(u"\"%1\" is missing"_s.arg(name));
    return optionalString(name).value_or(QString());
}

std::optional<QString> JsonReader::optionalString(QLatin1StringView name)
{
    if (isAbsent(name))
        return {};
    const QJsonValue value = m_object.value(name);
    if (!value.isString() || !value.toString().isValidUtf16())
        fail(u"\"%1\" is not a text"_s.arg(name));
    return value.toString();
}

std::optional<qint64> JsonReader::optionalInteger(QLatin1StringView name)
{
    if (isAbsent(name))
        return {};
    const QJsonValue value = m_object.value(name);
    // toInteger() gives its argument back for anything that is no whole number of 64 bits
    const qint64 number = value.toInteger(0);
    if (number != value.toInteger(1))
        fail(u"\"%1\" is not a whole number"_s.arg(name));
    return number;
}

void JsonReader::fail(const QString &description)
{
    if (!m_fault)
        m_fault = DecodingError { description };
}

bool JsonReader::isAbsent(QLatin1StringView name) const
{
    const QJsonValue value = m_object.value(name);
    return value.isUndefined() || value.isNull();
}

} // namespace kestrel
