#include "meet/MeetAction.h"
#include "meet/PageScripts.h"
#include <vector>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

MeetAction click(const QString &label, HotkeyAction preference, const QStringList &keywords)
{
    return { label, preference, clickScript(keywords), false };
}

MeetAction reaction(const QString &label, HotkeyAction preference, const QStringList &targets,
                    const QStringList &exclusions = {})
{
    return { label, preference, reactionScript(targets, exclusions), false };
}

/// Meet labels its buttons in the person's language: English and Spanish, as Kestrel itself.
std::vector<MeetAction> makeActions()
{
    return {
        click(u"mute"_s, HotkeyAction::meetMute,
              { u"turn off microphone"_s, u"turn on microphone"_s, u"desactivar micrófono"_s,
                u"activar micrófono"_s }),
        click(u"video"_s, HotkeyAction::meetVideo,
              { u"turn off camera"_s, u"turn on camera"_s, u"desactivar cámara"_s, u"activar cámara"_s }),
        click(u"hand"_s, HotkeyAction::meetHand,
              { u"raise hand"_s, u"lower hand"_s, u"levantar"_s, u"bajar la mano"_s }),
        { u"focus"_s, HotkeyAction::meetFocus, QString(), true },
        click(u"share-screen"_s, HotkeyAction::meetShareScreen,
              { u"present"_s, u"presentar"_s, u"share screen"_s, u"compartir pantalla"_s,
                u"stop presenting"_s, u"detener present"_s }),
        click(u"leave"_s, HotkeyAction::meetLeave,
              { u"leave call"_s, u"leave meeting"_s, u"end call"_s, u"hang up"_s, u"abandonar"_s,
                u"salir de la llamada"_s, u"colgar"_s, u"finalizar"_s }),
        reaction(u"react-thumbs"_s, HotkeyAction::meetReactThumbs,
                 { u"thumbs up"_s, u"pulgar arriba"_s, u"like"_s, u"me gusta"_s, u"👍"_s },
                 { u"down"_s, u"abajo"_s, u"dislike"_s, u"no me gusta"_s, u"👎"_s }),
        // the heart is one code point, without a variation selector
        reaction(u"react-heart"_s, HotkeyAction::meetReactHeart,
                 { u"sparkl"_s, u"destell"_s, u"brill"_s, u"💖"_s, u"love"_s, u"amor"_s, u"heart"_s,
                   u"corazón"_s, u"\u2764"_s },
                 { u"eye"_s, u"ojo"_s, u"smiling"_s, u"sonr"_s }),
        reaction(u"react-party"_s, HotkeyAction::meetReactParty,
                 { u"party"_s, u"celebrat"_s, u"fiesta"_s, u"🎉"_s }),
        reaction(u"react-clap"_s, HotkeyAction::meetReactClap,
                 { u"clap"_s, u"applau"_s, u"aplauso"_s, u"👏"_s }),
        reaction(u"react-laugh"_s, HotkeyAction::meetReactLaugh,
                 { u"laugh"_s, u"joy"_s, u"funny"_s, u"alegr"_s, u"risa"_s, u"😂"_s, u"🤣"_s },
                 { u"cry"_s, u"llor"_s, u"sad"_s, u"triste"_s }),
        reaction(u"react-surprise"_s, HotkeyAction::meetReactSurprise,
                 { u"surprise"_s, u"wow"_s, u"shock"_s, u"open mouth"_s, u"sorpres"_s, u"asombr"_s, u"boca"_s,
                   u"😮"_s, u"😯"_s }),
        reaction(u"react-sad"_s, HotkeyAction::meetReactSad,
                 { u"crying"_s, u"sad"_s, u"llor"_s, u"triste"_s, u"lágrim"_s, u"😢"_s, u"😭"_s },
                 { u"joy"_s, u"alegr"_s, u"laugh"_s, u"risa"_s }),
        reaction(u"react-thinking"_s, HotkeyAction::meetReactThinking,
                 { u"thinking"_s, u"think"_s, u"pensa"_s, u"pensativ"_s, u"medita"_s, u"🤔"_s }),
        reaction(u"react-thumbsdown"_s, HotkeyAction::meetReactThumbsDown,
                 { u"thumbs down"_s, u"pulgar abajo"_s, u"dislike"_s, u"no me gusta"_s, u"abajo"_s, u"down"_s,
                   u"👎"_s },
                 { u"up"_s, u"arriba"_s, u"👍"_s }),
        reaction(u"react-love"_s, HotkeyAction::meetReactLove,
                 { u"heart eye"_s, u"heart-eye"_s, u"ojos corazón"_s, u"ojos de corazón"_s, u"enamor"_s,
                   u"in love"_s, u"loving"_s, u"😍"_s }),
    };
}

} // namespace

std::span<const MeetAction> meetActions()
{
    static const std::vector<MeetAction> actions = makeActions();
    return actions;
}

} // namespace kestrel
