import { connect } from "./connection.js";

// The browser starts the worker for the events that it listens to. Running at all is what it needs them for: an open
// connection then keeps it alive.
chrome.runtime.onStartup.addListener(() => {});
chrome.runtime.onInstalled.addListener(() => {});
chrome.alarms.onAlarm.addListener(connect);
connect();
