#pragma once
#include "platform/LoginItem.h"

namespace kestrel {

/// An entry of the desktop's autostart folder (XDG Desktop Application Autostart), which starts `program`. An
/// entry that the person has switched off with the desktop's own means (Hidden, X-GNOME-Autostart-enabled)
/// stays off until it is disabled here once.
class XdgLoginItem final : public LoginItem
{
public:
    XdgLoginItem(const QString &autostartFolder, const QString &program);

    [[nodiscard]] std::expected<void, QString> setEnabled(bool enabled) override;
    [[nodiscard]] LoginItemState state() const override;

private:
    [[nodiscard]] std::expected<QByteArray, QString> content() const;

    QString m_file;
    QString m_program;
};

} // namespace kestrel
