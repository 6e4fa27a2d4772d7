#include "meet/PageScripts.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// The inside of a JavaScript array.
QString literals(const QStringList &keywords)
{
    QStringList quoted;
    for (const QString &keyword : keywords)
        quoted.append(u'"' + keyword + u'"');
    return quoted.join(u',');
}

} // namespace

QString clickScript(const QStringList &keywords)
{
    return uR"js((()=>{const ks=[)js"_s + literals(keywords)
        + uR"js(];for(const k of ks){)js"_s
          uR"js(const e=document.querySelector()js"_s
          uR"js(`button[aria-label*="${k}" i],[role="button"][aria-label*="${k}" i]`);)js"_s
          uR"js(if(e){const before=(e.getAttribute("aria-label")||"").toLowerCase();e.click();)js"_s
          uR"js(return "ok:"+before;}}return "miss";})())js"_s;
}

QString reactionScript(const QStringList &targets, const QStringList &exclusions)
{
    return uR"js((()=>{const ex=[)js"_s + literals(exclusions)
        + uR"js(];const labelOf=(el)=>((el.getAttribute("aria-label")||"")+" ")js"_s
          uR"js(+(el.getAttribute("data-tooltip")||"")).toLowerCase();)js"_s
          uR"js(const findBy=(ks)=>{for(const k of ks){)js"_s
          uR"js(const sel=`button[aria-label*="${k}" i],[role="button"][aria-label*="${k}" i],)js"_s
          uR"js(button[data-tooltip*="${k}" i],[role="button"][data-tooltip*="${k}" i]`;)js"_s
          uR"js(const els=document.querySelectorAll(sel);for(const e of els){const l=labelOf(e);)js"_s
          uR"js(if(ex.some(x=>l.includes(x)))continue;return e;}}return null;};)js"_s
          uR"js(const triggerKeys=["reaction","reacci"];const trigger=findBy(triggerKeys);)js"_s
          uR"js(if(!trigger)return "no-trigger";)js"_s
          uR"js(const wasOpen=trigger.getAttribute("aria-expanded")==="true";)js"_s
          uR"js(if(!wasOpen)trigger.click();const targets=[)js"_s
        + literals(targets)
        + uR"js(];const start=performance.now();const poll=()=>{const e=findBy(targets);)js"_s
          uR"js(if(e){e.click();setTimeout(()=>{const t=findBy(triggerKeys);)js"_s
          uR"js(if(t&&t.getAttribute("aria-expanded")==="true")t.click();},150);return;})js"_s
          uR"js(if(performance.now()-start<1500){requestAnimationFrame(poll);}};)js"_s
          uR"js(requestAnimationFrame(poll);return "fired";})())js"_s;
}

} // namespace kestrel
