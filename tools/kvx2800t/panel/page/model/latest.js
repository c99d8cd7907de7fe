/**
 * Sends settings that come faster than they are carried out: for each key one is under way, and of those that come
 * meanwhile only the newest is sent. So a wheel neither floods the instrument nor is late.
 */
export class Latest {
    /** @param {(request: object) => Promise<object>} send never rejects. */
    constructor(send) {
        this.send = send;
        this.slots = new Map();
    }

    /** The request of `key` that has not been answered yet, the newest; undefined when all have been. */
    pending(key) {
        const slot = this.slots.get(key);
        return slot && (slot.next ?? slot.current);
    }

    /** @param {(answer: object) => void} answered is told of the answer to this request, unless a newer one took its place. */
    async put(key, request, answered = () => {}) {
        const slot = this.slots.get(key);
        if (slot) {
            slot.next = request;
            slot.nextAnswered = answered;
            return;
        }
        this.slots.set(key, { current: request });
        const answer = await this.send(request);
        const { next, nextAnswered } = this.slots.get(key);
        this.slots.delete(key);
        if (next) return this.put(key, next, nextAnswered);
        answered(answer);
    }
}
