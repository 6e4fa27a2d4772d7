#pragma once
#include "platform/InstallPlaces.h"
#include <QByteArray>
#include <QList>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel {

/// What the desktop, the bus and the shells are told of a Kestrel that is installed for one person: menu
/// entry, icons, the helper's D-Bus service and the command `kestrel`.
class DesktopIntegration final
{
public:
    /// Takes menu entry and icons from the Kestrel in `bundle`; they name the one in `places.destination`.
    /// The error is a text for people.
    [[nodiscard]] static std::expected<DesktopIntegration, QString> read(const QString &bundle,
                                                                         const InstallPlaces &places);

    /// Writes everything or nothing. A command of that name that is not ours stays, and ours is left out.
    [[nodiscard]] std::expected<void, QString> write();
    /// Puts back what write() replaced.
    void undo();

private:
    struct File
    {
        QString path;
        QByteArray content;
        bool isWritten = false;
        std::optional<QByteArray> before {}; ///< nothing: there was none
    };

    [[nodiscard]] std::expected<void, QString> readIcons(const QString &theme);
    [[nodiscard]] std::expected<void, QString> writeFile(File &file);
    [[nodiscard]] std::expected<void, QString> linkCommand();

    QList<File> m_files;
    QString m_iconTheme;
    QString m_program;
    QString m_command;
    bool m_isLinked = false;
};

} // namespace kestrel
