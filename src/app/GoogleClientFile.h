#pragma once
#include "auth/GoogleConfiguration.h"
#include <QString>
#include <expected>

namespace kestrel {

/// The OAuth client to sign in with: the user's own file where there is one, else what was compiled in;
/// incomplete when neither is there. The file is Google's own download ({"installed": {"client_id": …,
/// "client_secret": …}}) or the inner object alone; a file that cannot be used is an error that says why.
[[nodiscard]] std::expected<GoogleClient, QString> googleClient(const QString &file);

/// What to tell a person instead of a sign-in that cannot work; empty when `client` is complete.
[[nodiscard]] QString missingClientMessage(const QString &file, const GoogleClient &client);

} // namespace kestrel
