// What another program's WebSocket library makes of the bridge: prints a line for each thing that happens.
const WebSocket = require('ws');
const address = `ws://127.0.0.1:${process.argv[2]}`;
const socket = new WebSocket(address);
let greetings = 0;
socket.on('message', (data, isBinary) => {
    const message = JSON.parse(data.toString());
    console.log(isBinary ? 'binary' : 'text', JSON.stringify(message));
    if (message.type === 'hello' && ++greetings === 1)
        socket.send('{"cmd":"state"}');
    else if (message.type === 'hello')
        socket.ping();
    else
        socket.close(1000);
});
socket.on('pong', () => {
    console.log('pong');
    socket.send('{"cmd":"meetHand","more":[1]}');
});
socket.on('close', (code) => {
    console.log('closed', code);
    const page = new WebSocket(address, { origin: 'https://page.example' });
    page.on('error', (error) => console.log(error.message));
});
socket.on('error', (error) => console.log(error.message));
