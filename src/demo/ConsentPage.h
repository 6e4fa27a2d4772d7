#pragma once
#include "demo/SampleAccounts.h"
#include <QStringList>

namespace kestrel::demo {

/// The page on which a person chooses an account and allows or cancels; it posts `requestId` back to
/// /consent. Well formed as XML too, so that a scripted browser can read it with an XML reader.
[[nodiscard]] QByteArray consentPage(const QString &requestId, const QStringList &scopes,
                                     const std::vector<SampleAccount> &accounts);

/// Says why a sign-in cannot go on, to the person who sits before it.
[[nodiscard]] QByteArray refusalPage(const QString &reason);

} // namespace kestrel::demo
