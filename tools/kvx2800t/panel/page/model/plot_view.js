/**
 * The part of time that the plot shows: the newest `span` seconds, or, once it is paused or zoomed, a part that stays.
 * Times are those of readings.
 */

export const kShortest = 0.5;
export const kLongest = 3600;

export class PlotView {
    constructor(span = 60) {
        this.span = span;
        this.fixed = undefined;
    }

    get isLive() {
        return this.fixed === undefined;
    }

    /** @returns {[number, number]} from and to, where `newest` is the time of the newest reading */
    range(newest = 0) {
        return this.fixed ?? [newest - this.span, newest];
    }

    live() {
        this.fixed = undefined;
    }

    pause(newest) {
        this.fixed = this.range(newest);
    }

    /** Shows what was drawn over with the mouse; too little is taken for a click and changes nothing. */
    zoomTo(from, to) {
        if (to - from >= kShortest / 10) this.fixed = [from, to];
    }

    /** Half or twice as much. What is live stays so and ends at the newest reading. */
    zoomBy(factor, newest) {
        const [from, to] = this.range(newest);
        const width = Math.min(Math.max((to - from) * factor, kShortest), kLongest);
        if (this.isLive) this.span = width;
        else this.fixed = [(from + to) / 2 - width / 2, (from + to) / 2 + width / 2];
    }

    /** Earlier or later by a part of what is shown. */
    moveBy(part, newest) {
        const [from, to] = this.range(newest);
        const by = (to - from) * part;
        this.fixed = [from + by, to + by];
    }

    setSpan(span) {
        this.span = span;
        this.fixed = undefined;
    }
}
