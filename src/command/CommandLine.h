#pragma once
#include <QString>
#include <QStringList>
#include <expected>
#include <optional>

namespace kestrel {

/// How every call of the program ends.
namespace ExitCode {
inline constexpr int Success = 0;
inline constexpr int Failed = 1; ///< what was asked for could not be done; stderr says why
inline constexpr int Usage = 2; ///< the call itself is wrong
inline constexpr int NotRunning = 3; ///< the verb needs a running Kestrel, and there is none
} // namespace ExitCode

/// What one call of the program asks for.
struct CommandLine
{
    QString verb; ///< empty: run Kestrel
    QStringList arguments; ///< what stands behind the verb
    bool json = false;
    bool waybar = false; ///< as waybar's custom modules read it
    bool follow = false; ///< a line, and another at every change
    bool testAlert = false; ///< doctor shows one
    bool help = false;
    bool version = false;
    bool justInstalled = false; ///< this start is the first of a fresh installation
    std::optional<QString> now;
    QString account { QStringLiteral("account") };
    QString calendar { QStringLiteral("primary") };
    QString dataFolder; ///< from --data or KESTREL_DATA
    QString googleBase; ///< from --google-base or KESTREL_GOOGLE_BASE
    QString secretStore; ///< "service", "file", or empty when the preference decides

    /// The error is a sentence for stderr.
    [[nodiscard]] static std::expected<CommandLine, QString> parse(const QStringList &arguments);

    /// Only a running Kestrel can carry it out.
    [[nodiscard]] bool isForRunningKestrel() const;

    /// Verb, its arguments and its options, as a running instance takes them over.
    [[nodiscard]] QStringList forHandOver() const;
};

/// The page of one verb, or of the whole program for an empty one.
[[nodiscard]] QString helpPage(const QString &verb);

} // namespace kestrel
