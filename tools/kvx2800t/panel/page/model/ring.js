/** Rows of numbers of which the newest are kept. */
export class Ring {
    /** @param {number} columns numbers of a row; the first is the time and never falls. */
    constructor(columns, capacity) {
        this.capacity = capacity;
        this.columns = Array.from({ length: columns }, () => new Float64Array(capacity));
        this.clear();
    }

    clear() {
        this.first = 0;
        this.length = 0;
    }

    /** @param {(number|null)[]} row null stands for what is not known. */
    push(row) {
        const at = (this.first + this.length) % this.capacity;
        this.columns.forEach((column, index) => {
            column[at] = row[index] ?? NaN;
        });
        if (this.length < this.capacity) this.length += 1;
        else this.first = (this.first + 1) % this.capacity;
    }

    at(column, index) {
        return this.columns[column][(this.first + index) % this.capacity];
    }

    /** The time of the newest row, or undefined. */
    get newest() {
        return this.length === 0 ? undefined : this.at(0, this.length - 1);
    }

    get oldest() {
        return this.length === 0 ? undefined : this.at(0, 0);
    }

    /** The index of the first row that is not before `time`. */
    indexOf(time) {
        let low = 0;
        let high = this.length;
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.at(0, middle) < time) low = middle + 1;
            else high = middle;
        }
        return low;
    }

    /**
     * The rows from `from` to `to`, both included, column by column; what is not known is null.
     * @param {number[]} wanted indices of columns.
     */
    slice(wanted, from = -Infinity, to = Infinity) {
        const begin = this.indexOf(from);
        let end = this.indexOf(to);
        while (end < this.length && this.at(0, end) === to) end += 1;
        return wanted.map((column) => {
            const values = new Array(Math.max(end - begin, 0));
            for (let index = begin; index < end; index += 1) {
                const value = this.at(column, index);
                values[index - begin] = Number.isNaN(value) ? null : value;
            }
            return values;
        });
    }
}
