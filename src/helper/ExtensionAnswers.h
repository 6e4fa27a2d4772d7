#pragma once
#include "helper/BrowserRoute.h"
#include "helper/RelayConnection.h"
#include <expected>

namespace kestrel {

/// What the extension answers to its four requests (docs/browser-protocol.md).
[[nodiscard]] BrowserRoute::FoundTab foundByExtension(const RelayConnection::Answer &answer);
[[nodiscard]] BrowserRoute::RunAnswer ranByExtension(const RelayConnection::Answer &answer);
[[nodiscard]] BrowserRoute::CloseAnswer closedByExtension(const RelayConnection::Answer &answer);
[[nodiscard]] std::expected<void, QString> openedByExtension(const RelayConnection::Answer &answer);

} // namespace kestrel
