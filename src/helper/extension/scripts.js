const frames = fetch(chrome.runtime.getURL("frames.js")).then(file => file.text());
const patience = 30_000;
const longestResult = 256 * 1024;
let world = null;

/// Whether the person has switched "Allow User Scripts" on. Switched off again it leaves functions that throw.
export function allowsScripts() {
    try {
        chrome.userScripts.getScripts();
        return true;
    } catch {
        return false;
    }
}

/// { result } with a text or null, { error }, or { gone } when the page went away under the script.
export async function runScript(tabId, source) {
    const code = `(${evaluate})(${JSON.stringify(source)}, (${await frames})(), ${longestResult})`;
    const injection = { target: { tabId }, js: [{ code }], world: "USER_SCRIPT", injectImmediately: true };
    const late = new Promise(resolve => setTimeout(resolve, patience, [{ error: "no result within 30 s" }]));
    try {
        world ??= chrome.userScripts.configureWorld({ csp: "script-src 'self' 'unsafe-eval'" });
        await world;
        const [{ result, error }] = await Promise.race([chrome.userScripts.execute(injection), late]);
        return result ?? (error ? { error } : { gone: true });
    } catch (error) {
        world = null;
        return { error: allowsScripts() ? error.message : "Allow User Scripts is off" };
    }
}

// Runs in the page. The browser keeps what a script throws to itself, so everything is told as a value.
async function evaluate(source, requestAnimationFrame, longest) {
    try {
        const value = await eval(source);
        if (value === undefined || value === null)
            return { result: null };
        const result = String(value).toWellFormed();
        const size = new TextEncoder().encode(JSON.stringify(result)).length;
        return size > longest ? { error: "result too large" } : { result };
    } catch (error) {
        return { error: String(error).toWellFormed().slice(0, 1000) };
    }
}
