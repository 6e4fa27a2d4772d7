import { runScript } from "./scripts.js";

const meetOrigin = "https://meet.google.com";

/// Carries out a request; never throws. Shapes: docs/browser-protocol.md.
export async function answer(request) {
    const { id } = request;
    try {
        switch (request.op) {
        case "find":
            return { id, tab: await find(request.marker) };
        case "run":
            return { id, ...await run(request) };
        case "close":
            return { id, ...await close(request) };
        case "open":
            return { id, ...await open(request) };
        default:
            return { id, error: `no such operation: ${request.op}` };
        }
    } catch (error) {
        return { id, error: String(error?.message ?? error) };
    }
}

/// Hosts are compared whole: a permission would also hold for another port.
function isMeetTab(tab, marker) {
    return tab.url !== undefined && new URL(tab.url).origin === meetOrigin && tab.url.includes(marker);
}

/// A tab that the browser has put to sleep runs no scripts until it is looked at.
function isAsleep(tab) {
    return tab.discarded || tab.frozen === true;
}

async function find(marker) {
    const tabs = (await chrome.tabs.query({})).filter(tab => isMeetTab(tab, marker));
    tabs.sort((a, b) => isAsleep(a) - isAsleep(b) || a.windowId - b.windowId || a.index - b.index);
    return tabs[0]?.id ?? null;
}

/// The tab, as long as it is where it was found.
async function present({ tab: id, marker }) {
    try {
        const tab = await chrome.tabs.get(id);
        return isMeetTab(tab, marker) ? tab : null;
    } catch {
        return null;
    }
}

async function run(request) {
    const tab = await present(request);
    if (!tab)
        return { gone: true };
    if (request.activate)
        await activate(tab);
    if (request.source.trim() === "")
        return { result: null };
    if (isAsleep(tab) && !request.activate)
        return { gone: true };
    return runScript(tab.id, request.source);
}

async function activate(tab) {
    await chrome.tabs.update(tab.id, { active: true });
    const { state } = await chrome.windows.get(tab.windowId);
    await chrome.windows.update(tab.windowId, state === "minimized" ? { state: "normal" } : { focused: true });
    if (state === "minimized")
        await chrome.windows.update(tab.windowId, { focused: true });
}

async function close(request) {
    const tab = await present(request);
    if (!tab)
        return { gone: true };
    // A tab without its page asks no "Leave site?". It has another identifier then; one that is discarded already has not.
    const discarded = await chrome.tabs.discard(tab.id).catch(() => tab);
    await chrome.tabs.remove((discarded ?? tab).id);
    return { closed: true };
}

async function open({ url, width, height }) {
    if (new URL(url).protocol !== "https:")
        return { error: "only https addresses are opened" };
    const window = await chrome.windows.create({ type: "popup", url, width, height, focused: true });
    if (window.width !== width || window.height !== height)
        await chrome.windows.update(window.id, { width, height });
    return { opened: true };
}
