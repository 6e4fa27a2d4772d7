#pragma once
#include "platform/ApplicationLookup.h"
#include <QStringList>

namespace kestrel {

struct ChromiumBrowser;

/// Knows the Chromium-family browsers by the .desktop files that distributions, vendors, Flatpak and Snap
/// give them, and finds those files. Looks anew each time: browsers are installed while Kestrel runs.
class DesktopApplicationLookup final : public ApplicationLookup
{
public:
    explicit DesktopApplicationLookup(QStringList folders = applicationFolders());

    /// A file that the person's own folder hides, or whose program is gone (TryExec), does not count.
    [[nodiscard]] std::optional<QString> locationOf(const QString &bundleIdentifier) const override;

    /// The file of one way of installing a browser.
    [[nodiscard]] std::optional<QString> locationOf(const ChromiumBrowser &browser) const;

    /// The XDG data folders, then those of Flatpak and Snap where the session does not name them.
    [[nodiscard]] static QStringList applicationFolders();

private:
    QStringList m_folders;
};

} // namespace kestrel
