// A third party's client of the bridge: prints each message as a line, and sends each line of its standard input.
// bridge_client.js PORT
"use strict";
const WebSocket = require("ws");

const socket = new WebSocket(`ws://127.0.0.1:${process.argv[2]}`);
socket.on("message", message => console.log(message.toString()));
socket.on("error", error => { console.error(error.message); process.exit(1); });
socket.on("close", () => process.exit(0));
require("readline").createInterface({ input: process.stdin })
    .on("line", line => socket.send(line))
    .on("close", () => socket.close());
