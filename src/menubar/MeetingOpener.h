#pragma once
#include "model/CalendarAccount.h"
#include "model/Meeting.h"
#include <QSize>
#include <QString>
#include <QUrl>
#include <optional>

namespace kestrel {

class AccountRegistry;
class ApplicationLookup;
class HelperChannel;
class Preferences;
class Screens;
class UrlOpener;

/// The one place that opens a meeting's link. Refuses unsafe ones, lets the browser pick the right account
/// for a Google Meet link, and chooses between a tab of the default browser and an app window of a
/// Chromium-family one. What it is given outlives it, and so does it every call that is under way. Main
/// thread only.
class MeetingOpener final
{
public:
    MeetingOpener(const AccountRegistry &registry, const Preferences &preferences, UrlOpener &opener,
                  const ApplicationLookup &applications, HelperChannel &helper, const Screens &screens);

    /// Failures are logged; where a browser can still help, the default one does.
    void open(const QUrl &url, const std::optional<QString> &authEmail, MeetLaunchMode launchMode);

    /// With the e-mail and the mode of the registered account; in a tab and without one when there is none.
    void openForAccount(const QUrl &url, const std::optional<QString> &accountID);

    /// A page in the default handler: the calendar's, a map's.
    void openExternal(const QUrl &url);

    /// In device-independent pixels.
    [[nodiscard]] QSize popupWindowSize() const;
    /// The path of the first installed Chromium-family browser's .desktop file.
    [[nodiscard]] std::optional<QString> findChromium() const;

private:
    const AccountRegistry &m_registry;
    const Preferences &m_preferences;
    UrlOpener &m_opener;
    const ApplicationLookup &m_applications;
    HelperChannel &m_helper;
    const Screens &m_screens;
};

} // namespace kestrel
