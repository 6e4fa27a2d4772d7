#include "meet/MeetHUDContent.h"
#include <QCoreApplication>
#include <QStringList>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

MeetHUDContent hudContent(HotkeyAction action, const QString &before)
{
    const QString label = before.toLower();
    const auto holds = [&](std::initializer_list<QStringView> parts) {
        return std::ranges::any_of(parts, [&](QStringView part) { return label.contains(part); });
    };
    const auto symbol = [](const QString &name) { return MeetHUDContent { name, {} }; };
    const auto emoji = [](const QString &text) { return MeetHUDContent { {}, text }; };
    switch (action) {
    case HotkeyAction::join:
        return {};
    case HotkeyAction::meetMute:
        // "micrófono" bears its accent
        return symbol(holds({ u"turn off micro", u"desactivar micro", u"desactivar micró" }) ? u"mic.slash"_s
                                                                                             : u"mic"_s);
    case HotkeyAction::meetVideo:
        return symbol(holds({ u"turn off camera", u"desactivar cám" }) ? u"video.slash"_s : u"video"_s);
    case HotkeyAction::meetHand:
        return symbol(holds({ u"raise hand", u"levantar" }) ? u"hand.raised.fill"_s : u"hand.raised"_s);
    case HotkeyAction::meetFocus:
        return symbol(u"macwindow"_s);
    case HotkeyAction::meetShareScreen:
        return symbol(holds({ u"present now", u"presentar ahora", u"share screen", u"compartir pantalla" })
                          ? u"rectangle.on.rectangle.fill"_s
                          : u"rectangle.on.rectangle"_s);
    case HotkeyAction::meetLeave:
        return symbol(u"phone.down.fill"_s);
    case HotkeyAction::meetReactThumbs:
        return emoji(u"👍"_s);
    case HotkeyAction::meetReactHeart:
        return emoji(u"💖"_s);
    case HotkeyAction::meetReactParty:
        return emoji(u"🎉"_s);
    case HotkeyAction::meetReactClap:
        return emoji(u"👏"_s);
    case HotkeyAction::meetReactLaugh:
        return emoji(u"😂"_s);
    case HotkeyAction::meetReactSurprise:
        return emoji(u"😮"_s);
    case HotkeyAction::meetReactSad:
        return emoji(u"😢"_s);
    case HotkeyAction::meetReactThinking:
        return emoji(u"🤔"_s);
    case HotkeyAction::meetReactThumbsDown:
        return emoji(u"👎"_s);
    case HotkeyAction::meetReactLove:
        return emoji(u"😍"_s);
    }
    return {};
}

QString hudSymbolText(const QString &symbol)
{
    static constexpr std::pair<QLatin1StringView, const char *> texts[] {
        { "mic.slash"_L1, QT_TRID_NOOP("meet_hud.mic_off") },
        { "mic"_L1, QT_TRID_NOOP("meet_hud.mic_on") },
        { "video.slash"_L1, QT_TRID_NOOP("meet_hud.camera_off") },
        { "video"_L1, QT_TRID_NOOP("meet_hud.camera_on") },
        { "hand.raised.fill"_L1, QT_TRID_NOOP("meet_hud.hand_raised") },
        { "hand.raised"_L1, QT_TRID_NOOP("meet_hud.hand_lowered") },
        { "macwindow"_L1, QT_TRID_NOOP("meet_hud.focused") },
        { "rectangle.on.rectangle.fill"_L1, QT_TRID_NOOP("meet_hud.sharing") },
        { "rectangle.on.rectangle"_L1, QT_TRID_NOOP("meet_hud.not_sharing") },
        { "phone.down.fill"_L1, QT_TRID_NOOP("meet_hud.left") },
    };
    const auto *found = std::ranges::find_if(texts, [&](const auto &row) { return row.first == symbol; });
    return found == std::end(texts) ? QString() : qtTrId(found->second);
}

} // namespace kestrel
