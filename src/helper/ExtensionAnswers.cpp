#include "helper/ExtensionAnswers.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The answer, or what went wrong on either side.
std::expected<QJsonObject, QString> checked(const RelayConnection::Answer &answer)
{
    if (answer && answer->contains("error"_L1))
        return std::unexpected(browserErrorText(answer->value("error"_L1)));
    return answer;
}

QString unknownAnswer()
{
    return u"The browser's extension answered in a way that is not known here"_s;
}

} // namespace

BrowserRoute::FoundTab foundByExtension(const RelayConnection::Answer &answer)
{
    const auto told = checked(answer);
    if (!told)
        return std::unexpected(told.error());
    const QJsonValue tab = told->value("tab"_L1);
    if (tab.isNull())
        return std::nullopt;
    // toInteger() gives its argument back for anything that is no whole number of 64 bits
    const qint64 number = tab.toInteger(0);
    if (number != tab.toInteger(1))
        return std::unexpected(unknownAnswer());
    return QString::number(number);
}

BrowserRoute::RunAnswer ranByExtension(const RelayConnection::Answer &answer)
{
    using Ran = BrowserRoute::Ran;
    const auto told = checked(answer);
    if (!told)
        return std::unexpected(told.error());
    if (told->value("gone"_L1).toBool())
        return Ran { true, {} };
    const QJsonValue result = told->value("result"_L1);
    if (result.isNull())
        return Ran {};
    if (!result.isString())
        return std::unexpected(unknownAnswer());
    return Ran { false, result.toString() };
}

BrowserRoute::CloseAnswer closedByExtension(const RelayConnection::Answer &answer)
{
    const auto told = checked(answer);
    if (!told)
        return std::unexpected(told.error());
    return !told->value("gone"_L1).toBool();
}

std::expected<void, QString> openedByExtension(const RelayConnection::Answer &answer)
{
    const auto told = checked(answer);
    if (!told)
        return std::unexpected(told.error());
    if (!told->value("opened"_L1).toBool())
        return std::unexpected(unknownAnswer());
    return {};
}

} // namespace kestrel
