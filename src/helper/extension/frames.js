// One expression: makes a requestAnimationFrame for a script, which goes on while the page is hidden. There the browser
// draws no frames and wakes timers once a second, so whatever comes first counts: a frame, a change of the document, a
// timer. The browser's own function is left alone.
() => {
    let waiting = [];
    let isFirst = true;
    let frame, timer;
    // messages are not slowed; and unlike an observer's turn they let the page work in between
    const channel = new MessageChannel();
    const wakeSoon = () => channel.port2.postMessage(null);
    const observer = new MutationObserver(wakeSoon);
    const wake = () => {
        const callbacks = waiting;
        waiting = [];
        observer.disconnect();
        clearTimeout(timer);
        window.cancelAnimationFrame(frame);
        for (const callback of callbacks) {
            try {
                callback(performance.now());
            } catch (error) {
                reportError(error);
            }
        }
        // a callback that changes the page in each of its frames must not drive itself
        observer.takeRecords();
    };
    channel.port1.onmessage = wake;
    return callback => {
        if (waiting.push(callback) > 1)
            return;
        observer.observe(document, { subtree: true, childList: true, attributes: true });
        timer = setTimeout(wake, 50);
        frame = window.requestAnimationFrame(wake);
        // what the script changed before its first frame has nobody told us
        if (isFirst && document.hidden)
            wakeSoon();
        isFirst = false;
    };
}
