/** The connection to the panel's program: opened again whenever it ends, and asked with messages that have answers. */

const kAnswerWithin = 10000;
const kOpenAgainAfter = 1000;

export class Server {
    /** @param {(event: object) => void} tell is told of messages, and of "opened" and "closed". */
    constructor(tell) {
        this.tell = tell;
        this.lastId = 0;
        this.awaited = new Map();
        this.open();
    }

    open() {
        const token = new URLSearchParams(location.search).get("token") ?? "";
        const scheme = location.protocol === "https:" ? "wss" : "ws";
        this.socket = new WebSocket(`${scheme}://${location.host}/ws?token=${encodeURIComponent(token)}`);
        this.socket.addEventListener("open", () => this.tell({ type: "opened" }));
        this.socket.addEventListener("message", (event) => this.take(event.data));
        this.socket.addEventListener("close", () => this.closed());
    }

    /** Never rejects: what cannot be sent, or is not answered in time, is answered here. */
    send(request) {
        if (this.socket.readyState !== WebSocket.OPEN)
            return Promise.resolve({ ok: false, text: "Not sent: there is no connection to the panel’s program." });
        const id = (this.lastId += 1);
        return new Promise((resolve) => {
            const timer = setTimeout(() => this.answer(id, { ok: false, text: "No answer yet; it may still be done." }), kAnswerWithin);
            this.awaited.set(id, { resolve, timer });
            this.socket.send(JSON.stringify({ id, ...request }));
        });
    }

    take(text) {
        let message;
        try {
            message = JSON.parse(text);
        } catch {
            return;
        }
        if (message.type === "result") this.answer(message.id, message);
        else this.tell(message);
    }

    answer(id, answer) {
        const request = this.awaited.get(id);
        if (!request) return;
        this.awaited.delete(id);
        clearTimeout(request.timer);
        request.resolve(answer);
    }

    closed() {
        for (const id of [...this.awaited.keys()])
            this.answer(id, { ok: false, text: "The connection to the panel’s program was lost; it may have been done." });
        this.tell({ type: "closed" });
        setTimeout(() => this.open(), kOpenAgainAfter);
    }
}
