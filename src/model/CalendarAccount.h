#pragma once
#include "base/DecodingError.h"
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <array>
#include <expected>
#include <optional>

namespace kestrel {

/// How a meeting link of an account is opened: a tab of the default browser, or an app-mode window.
enum class MeetLaunchMode { Tab, Popup };

inline constexpr std::array allMeetLaunchModes { MeetLaunchMode::Tab, MeetLaunchMode::Popup };

/// "tab" and "popup".
[[nodiscard]] QString rawValue(MeetLaunchMode mode);
[[nodiscard]] std::optional<MeetLaunchMode> meetLaunchModeFromRaw(const QString &raw);

/// A signed-in account.
struct CalendarAccount
{
    QString id;
    QString providerID;
    std::optional<QString> email;
    QString displayName;
    MeetLaunchMode meetLaunchMode = MeetLaunchMode::Tab;
    /// Calendar identifier → hex colour text, as the user chose it.
    QMap<QString, QString> calendarColorOverrides;

    /// The stored form; `email` is written only when present.
    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static std::expected<CalendarAccount, DecodingError> fromJson(const QJsonObject &json);

    friend bool operator==(const CalendarAccount &, const CalendarAccount &) = default;
};

[[nodiscard]] size_t qHash(const CalendarAccount &account, size_t seed = 0);

/// One calendar of an account as its provider lists it.
struct ProviderCalendar
{
    QString id;
    QString title;
    bool isPrimary = false;
    /// The provider's background colour.
    std::optional<QString> colorHex;

    friend bool operator==(const ProviderCalendar &, const ProviderCalendar &) = default;
};

[[nodiscard]] size_t qHash(const ProviderCalendar &calendar, size_t seed = 0);

} // namespace kestrel
