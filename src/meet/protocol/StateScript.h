#pragma once
#include <QStringView>

namespace kestrel {

/// The page script that reads a call's state: one expression, whose value is the JSON text of five booleans.
/// Kestrel polls with it, and the helper knows it by its text, so that polls in quick succession share one
/// answer. A button's label names what a press would do, hence the state is its opposite.
inline constexpr QStringView stateScript = uR"js((()=>{
const labelOf=(ks)=>{
  for(const k of ks){
    const e=document.querySelector(`button[aria-label*="${k}" i],[role="button"][aria-label*="${k}" i]`);
    if(e)return (e.getAttribute("aria-label")||"").toLowerCase();
  }
  return null;
};
const isOff=(l)=>l!==null&&(l.includes("turn on")||(l.includes("activar")&&!l.includes("desactivar")));
const has=(l,ks)=>l!==null&&ks.some(k=>l.includes(k));
const m=labelOf(["turn off microphone","turn on microphone","desactivar micrófono","activar micrófono"]);
const c=labelOf(["turn off camera","turn on camera","desactivar cámara","activar cámara"]);
const h=labelOf(["raise hand","lower hand","levantar","bajar"]);
const s=labelOf(["stop presenting","detener present","present now","presentar ahora",
                 "share screen","compartir pantalla"]);
return JSON.stringify({mic:!isOff(m),cam:!isOff(c),hand:has(h,["lower","bajar"]),
                       share:has(s,["stop","detener"]),found:m!==null||c!==null});
})())js";

} // namespace kestrel
