// An HTTP/2 server, and the line to it, whose port is printed. Each answer says which connection it came over. A line of
// standard input, which is echoed, lets those that stand go dead: whatever goes into them is lost, and none of them ends.
const { createSecureServer } = require('http2');
const net = require('net');
const { readFileSync } = require('fs');

const connections = new Map(); // by the port that the server sees
const dead = new Set();
const server = createSecureServer({ key: readFileSync('key.pem'), cert: readFileSync('certificate.pem') },
    (request, response) => {
        const number = connections.get(request.stream.session.socket.remotePort);
        response.end(`${request.httpVersion} on ${number}`);
    });
const line = net.createServer((near) => {
    const far = net.connect(server.address().port, '127.0.0.1', () => {
        connections.set(far.localPort, connections.size + 1);
        near.on('data', (bytes) => dead.has(near) || far.write(bytes));
    });
    far.on('data', (bytes) => dead.has(near) || near.write(bytes));
    near.on('error', () => {}).on('close', () => far.destroy());
    far.on('error', () => {});
    line.standing = (line.standing || []).concat(near);
});
server.listen(0, '127.0.0.1', () => line.listen(0, '127.0.0.1', () => console.log(line.address().port)));
process.stdin.on('data', () => {
    line.standing.forEach((near) => dead.add(near));
    console.log('dead');
}).on('end', () => process.exit());
