#pragma once
#include <QCoro/QCoroTask>
#include <QString>
#include <QUrl>
#include <expected>

namespace kestrel::demo {

/// Plays the browser and the person in one: opens the sample's sign-in page, chooses an account, presses a
/// button and follows the redirect. The error says at which step it ended.
struct ScriptedConsent
{
    QUrl page; ///< on 127.0.0.1; no other address is ever contacted
    QString account; ///< mail address; empty takes the one that the page offers first
    bool isCancelled = false;
};

[[nodiscard]] QCoro::Task<std::expected<void, QString>> press(ScriptedConsent consent);

} // namespace kestrel::demo
