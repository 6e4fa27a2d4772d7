#pragma once
#include "auth/GoogleConfiguration.h"
#include <QString>

namespace kestrel {

class Clock;
class HttpTransport;
class PreferenceStore;
class SecretStore;
class UrlOpener;

/// The desktop as the environment needs it; all of it outlives the environment and the tasks it started.
struct PlatformServices
{
    PreferenceStore &preferenceStore;
    SecretStore &secrets;
    HttpTransport &transport;
    UrlOpener &opener;
    const Clock &clock;
    GoogleEndpoints endpoints;
    GoogleClient client;
    QString secretService; ///< the `service` attribute of this instance's secrets
};

} // namespace kestrel
