import { answer } from "./operations.js";
import { allowsScripts } from "./scripts.js";

const host = "app.kestrel.kestrel";
const firstDelay = 1000;
// a worker without a connection is put to sleep after half a minute, and its timers with it: then the alarm goes on
const longestDelay = 16_000;

let port = null;
let delay = firstDelay;
let underWay = 0;
let updated = false;

export function connect() {
    if (port)
        return;
    port = chrome.runtime.connectNative(host);
    port.onMessage.addListener(receive);
    port.onDisconnect.addListener(() => {
        void chrome.runtime.lastError; // read, so that the browser does not list a missing host as a fault of ours
        port = null;
        chrome.alarms.create("connect", { periodInMinutes: 1 });
        if (delay <= longestDelay) {
            setTimeout(connect, delay);
            delay *= 2;
        }
    });
}

async function receive(message) {
    if ("hello" in message) {
        delay = firstDelay;
        chrome.alarms.clear("connect");
        sayHello();
        updated = await isInstalledHere(message.installed);
    } else {
        ++underWay;
        const from = port;
        const reply = await answer(message);
        --underWay;
        if (from === port)
            port?.postMessage(reply);
    }
    if (updated && underWay === 0)
        chrome.runtime.reload();
}

// `hello` comes first: the relay copies what stands behind it.
function sayHello() {
    port?.postMessage({ hello: 1, revision: revision(), userScripts: allowsScripts() });
}

/// Of the extension that is running, whatever its folder holds by now.
function revision() {
    const manifest = chrome.runtime.getManifest();
    return manifest.version_name ?? manifest.version;
}

/// Whether our own folder holds another extension than the one that is running, so that starting anew would help. One
/// that was loaded from elsewhere would start anew for ever.
async function isInstalledHere(installed) {
    if (!installed || installed === revision())
        return false;
    try {
        const file = await fetch(chrome.runtime.getURL("revision"), { cache: "no-store" });
        return (await file.text()).trim() === installed;
    } catch {
        return false;
    }
}
