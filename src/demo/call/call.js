// A call with buttons that say what they will do, as a meeting page's do. ?lang=es speaks Spanish, ?without=mic,camera
// leaves buttons out, ?muted starts muted, ?ask asks "Leave site?", ?tray starts with an open tray of reactions.
"use strict";

const options = new URLSearchParams(location.search);
const spanish = options.get("lang") === "es";
const without = (options.get("without") ?? "").split(",");
const say = (english, inSpanish) => spanish ? inSpanish : english;
document.documentElement.lang = say("en", "es");

const paths = {
    mic: ["M12 3a3 3 0 0 0-3 3v5a3 3 0 0 0 6 0V6a3 3 0 0 0-3-3", "M5.5 11a6.5 6.5 0 0 0 13 0", "M12 17.5V21"],
    camera: ["M5 6.5h8a2 2 0 0 1 2 2v7a2 2 0 0 1-2 2H5a2 2 0 0 1-2-2v-7a2 2 0 0 1 2-2", "M15 11l6-3.5v9L15 13"],
    hand: ["M8 12V6a1.5 1.5 0 0 1 3 0v5", "M11 11V4.5a1.5 1.5 0 0 1 3 0V11", "M14 11V6a1.5 1.5 0 0 1 3 0v8a6 6 0 0 1-6 6c-2.5 0-4-1-5.2-3L4 13.5a1.4 1.4 0 0 1 2.3-1.5L8 14"],
    share: ["M4 5h16a1 1 0 0 1 1 1v9a1 1 0 0 1-1 1H4a1 1 0 0 1-1-1V6a1 1 0 0 1 1-1", "M12 13V8.5", "M9.5 10.5L12 8l2.5 2.5", "M8 20h8"],
    react: ["M12 3a9 9 0 1 0 0 18a9 9 0 0 0 0-18", "M8.5 14a4 4 0 0 0 7 0", "M9 9.5v.5", "M15 9.5v.5"],
    leave: ["M3 14c0-5 18-5 18 0c0 2-1 2.5-2 2.3l-3-.7v-2.3c-2-1-6-1-8 0v2.3l-3 .7c-1 .2-2-.3-2-2.3"],
    slash: ["M4 4l16 16"],
};
const names = say(["You", "Robin Sample", "Alex Example"], ["Tú", "Robin Sample", "Alex Example"]);
const reactions = [
    ["👍", "Thumbs up", "Pulgar arriba"], ["💖", "Sparkling heart", "Corazón brillante"],
    ["🎉", "Party popper", "Fiesta"], ["👏", "Clapping hands", "Aplausos"],
    ["😂", "Face with tears of joy", "Cara de risa"], ["😮", "Face with open mouth", "Cara de sorpresa"],
    ["😢", "Crying face", "Cara llorando"], ["🤔", "Thinking face", "Cara pensativa"],
    ["👎", "Thumbs down", "Pulgar abajo"], ["😍", "Smiling face with heart eyes", "Cara enamorada"],
];
const state = { mic: !options.has("muted"), camera: true, hand: false, share: false, tray: options.has("tray") };

const find = selector => document.querySelector(selector);
const make = (tag, properties = {}, ...children) => {
    const element = Object.assign(document.createElement(tag), properties);
    element.append(...children);
    return element;
};

/// Whoever watches over this page hears of every press, in order.
let told = Promise.resolve();
const tell = what => {
    const at = performance.timeOrigin + performance.now();
    told = told.then(() => fetch(`/-/clicks?at=${at}`, { method: "POST", body: what })).catch(() => {});
};

const svg = "http://www.w3.org/2000/svg";
const drawn = (name, isOff) => {
    const picture = document.createElementNS(svg, "svg");
    picture.setAttribute("viewBox", "0 0 24 24");
    for (const path of isOff ? paths[name].concat(paths.slash) : paths[name])
        picture.appendChild(document.createElementNS(svg, "path")).setAttribute("d", path);
    return picture;
};

const controls = {
    mic: {
        label: () => state.mic ? say("Turn off microphone", "Desactivar micrófono") : say("Turn on microphone", "Activar micrófono"),
        look: () => state.mic ? "" : "off", press: () => state.mic = !state.mic,
    },
    camera: {
        label: () => state.camera ? say("Turn off camera", "Desactivar cámara") : say("Turn on camera", "Activar cámara"),
        look: () => state.camera ? "" : "off", press: () => state.camera = !state.camera,
    },
    hand: {
        label: () => state.hand ? say("Lower hand", "Bajar la mano") : say("Raise hand", "Levantar la mano"),
        look: () => state.hand ? "on" : "", press: () => state.hand = !state.hand,
    },
    share: {
        label: () => state.share ? say("Stop presenting", "Detener presentación") : say("Present now", "Presentar ahora"),
        look: () => state.share ? "on" : "", press: () => state.share = !state.share,
    },
    react: {
        label: () => say("Send a reaction", "Enviar una reacción"),
        look: () => state.tray ? "on" : "", press: toggleTray,
    },
    leave: { label: () => say("Leave call", "Salir de la llamada"), look: () => "leave", press: leave },
};

for (const [name, control] of Object.entries(controls)) {
    if (without.includes(name))
        continue;
    control.button = make("button");
    control.button.addEventListener("click", () => {
        tell(control.button.getAttribute("aria-label"));
        control.press();
        show(false);
    });
    find(".controls").append(control.button);
}
const trayButtons = reactions.map(([emoji, english, inSpanish]) => {
    const button = make("button", { textContent: emoji });
    button.setAttribute("aria-label", say(english, inSpanish));
    button.addEventListener("click", () => {
        tell(button.getAttribute("aria-label"));
        find(".tile .burst")?.remove();
        find(".tile").append(make("span", { className: "burst", textContent: emoji }));
    });
    return button;
});
for (const name of names) {
    const initials = name.split(" ").map(word => word[0]).join("");
    find(".tiles").append(make("div", { className: "tile" }, make("div", { className: "initials", textContent: initials }),
        make("span", { className: "name", textContent: name }), make("span", { className: "marks" })));
}

function show(isSettled = true) {
    for (const [name, control] of Object.entries(controls)) {
        if (!control.button)
            continue;
        const isOff = control.look() === "off";
        control.button.setAttribute("aria-label", control.label());
        control.button.className = control.look();
        control.button.replaceChildren(drawn(name, isOff));
    }
    controls.react.button?.setAttribute("aria-expanded", String(state.tray));
    if (isSettled || !state.tray) {
        find(".tray").replaceChildren(...state.tray ? trayButtons : []);
        find(".tray").hidden = !state.tray;
    }
    find(".tile").classList.toggle("camera", state.camera);
    find(".tile .marks").textContent = (state.hand ? "✋" : "") + (state.share ? "🖥" : "") + (state.mic ? "" : "🔇");
}

/// What is in the tray comes a moment after it was asked to open.
function toggleTray() {
    state.tray = !state.tray;
    setTimeout(show, 60);
}

function leave() {
    window.onbeforeunload = options.has("ask") ? window.onbeforeunload : null;
    find(".controls").replaceChildren();
    find(".tray").replaceChildren();
    state.tray = false;
    for (const tile of document.querySelectorAll(".tile"))
        tile.hidden = true;
    find(".tiles").style.visibility = "hidden";
    find(".gone h1").textContent = say("You left the call", "Has salido de la llamada");
    find(".gone p").textContent = say("This page is part of Kestrel's demo.", "Esta página es parte de la demostración de Kestrel.");
    find(".gone").hidden = false;
}

if (options.has("ask"))
    window.onbeforeunload = event => { event.preventDefault(); return true; };
document.title = say("Sample call", "Llamada de ejemplo");
find(".where").textContent = location.pathname.slice(1);
const tick = () => find(".clock").textContent = new Date().toLocaleTimeString(say("en-GB", "es-ES"), { timeStyle: "short" });
tick();
setInterval(tick, 10000);
show();
