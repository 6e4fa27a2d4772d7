#pragma once
#include "helper/BrowserRoute.h"
#include <QJsonObject>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <expected>

namespace kestrel {

/// What the address of every page of the Meet host starts with.
inline constexpr QLatin1StringView meetOrigin { "https://meet.google.com/" };

struct DevToolsFailure
{
    QString text;
    bool isSessionGone = false;
    bool isWorldGone = false; ///< the page has left what it showed; nothing was run
    bool isTabGone = false;
};
template<typename T>
using DevToolsResult = std::expected<T, DevToolsFailure>;

struct DevToolsPage
{
    QString tab;
    QString address;

    /// An https page of the Meet host whose address contains `marker`.
    [[nodiscard]] bool showsMeet(const QString &marker) const;
};

/// The "result" of an answer, or its "error".
[[nodiscard]] DevToolsResult<QJsonObject> devToolsResult(const QJsonObject &answer);
/// The pages in the result of Target.getTargets.
[[nodiscard]] QList<DevToolsPage> devToolsPages(const QJsonObject &targets);
/// What the result of Runtime.evaluate tells of a script, as DevToolsRoute makes the page evaluate it.
[[nodiscard]] BrowserRoute::RunAnswer ranInPage(const QJsonObject &evaluated);

} // namespace kestrel
