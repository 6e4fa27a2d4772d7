#pragma once
#include "command/CommandLine.h"
#include "command/InstancePlace.h"
#include "platform/SessionInstance.h"
#include "platform/linux/BrowserSetup.h"

namespace kestrel {

/// The person's browsers; with a data folder those in a home of its own, so that tests and demos leave the
/// person's alone.
[[nodiscard]] BrowserPlaces browserPlaces(const InstancePlace &place);

/// `browser install` and `browser status`; need no running Kestrel.
[[nodiscard]] VerbResult browserVerb(const CommandLine &line, const InstancePlace &place);

} // namespace kestrel
