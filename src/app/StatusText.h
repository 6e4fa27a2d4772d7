#pragma once
#include "base/Instant.h"
#include "streamdeck/MeetStateSnapshot.h"
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace kestrel {

class AppEnvironment;
class MenuBarController;

/// What stands in a panel that asks: the status item in words.
struct PanelStatus
{
    enum class Stage {
        SignedOut, ///< no account is connected, or none of them signed in
        Free, ///< nothing in the next 24 hours
        Later,
        Soon, ///< within the lead time
        Now, ///< it has just started
    };

    Stage stage = Stage::Free;
    QString label; ///< beside the icon: "in 4 min"; may be empty
    QString title; ///< of the meeting that it counts to
    QStringList agenda; ///< a line for each meeting in progress or to come, the first few
    QString trouble; ///< accounts whose person must sign in again; empty when there are none
    MeetStateSnapshot call;
};

[[nodiscard]] PanelStatus panelStatus(AppEnvironment &environment, const MenuBarController &menuBar);

/// "in 4 min · Review"; empty when there is nothing to count to.
[[nodiscard]] QString panelLine(const PanelStatus &status);

/// The object that waybar's custom modules read: text, alt, tooltip, class. Text and tooltip are Pango
/// markup.
[[nodiscard]] QJsonObject waybarObject(const PanelStatus &status);

/// For people in a terminal.
[[nodiscard]] QString statusText(AppEnvironment &environment);

/// For scripts (docs/command-line.md).
[[nodiscard]] QJsonObject statusObject(AppEnvironment &environment);

} // namespace kestrel
