/** Quantities as texts: what users type ("3.3", "3300 mV", "250m") and what the page shows. */

const kPrefixes = new Map([
    ["", 1],
    ["n", 1e-9],
    ["u", 1e-6],
    ["µ", 1e-6],
    ["μ", 1e-6],
    ["m", 1e-3],
    ["k", 1e3],
]);

const kNames = new Map([
    ["V", ["v", "volt", "volts"]],
    ["A", ["a", "amp", "amps", "ampere", "amperes"]],
    ["s", ["s", "sec", "second", "seconds"]],
]);

/** What is shown in place of a value that is not known. */
export const kDash = "–";

const kNumber = /^([+-]?(?:\d+(?:[.,]\d*)?|[.,]\d+)(?:e[+-]?\d+)?)\s*(.*)$/i;

/**
 * Reads a quantity.
 * @param {string} text such as "3.3", "3,3 V" or "3300 mV"; without a unit it is in `unit`.
 * @param {string} unit "V", "A" or "s"; another one is refused.
 * @returns {{ok: true, value: number} | {ok: false, reason: string}}
 */
export function parseQuantity(text, unit) {
    const match = kNumber.exec(text.trim());
    if (!match) return { ok: false, reason: text.trim() === "" ? "Type a value" : `“${text.trim()}” is not a number` };
    const factor = factorOf(match[2].trim(), unit);
    if (factor === undefined) return { ok: false, reason: `“${match[2].trim()}” is not a unit for ${unit}` };
    // By way of a text, so that 3300 mV is 3.3 and not 3.3000000000000003.
    const value = Number((Number(match[1].replace(",", ".")) * factor).toPrecision(15));
    return Number.isFinite(value) ? { ok: true, value } : { ok: false, reason: "The value is too large" };
}

function factorOf(suffix, unit) {
    if (suffix === "") return 1;
    if (suffix === "min" && unit === "s") return 60;
    if (suffix.length === 1 && kPrefixes.has(suffix)) return kPrefixes.get(suffix);
    for (const [prefix, factor] of kPrefixes)
        if (suffix.startsWith(prefix) && kNames.get(unit).includes(suffix.slice(prefix.length).toLowerCase())) return factor;
    return undefined;
}

/** A value with `digits` decimals, or the dash: no value that is not known is shown as a number. */
export function formatNumber(value, digits = 3) {
    if (typeof value !== "number" || !Number.isFinite(value)) return kDash;
    const text = value.toFixed(digits);
    return Number(text) === 0 ? (0).toFixed(digits) : text;
}

/** With its unit: "3.300 V", or the dash alone. */
export function formatQuantity(value, unit, digits = 3) {
    const text = formatNumber(value, digits);
    return text === kDash ? text : `${text} ${unit}`;
}

/** As short as it can be: "33 V", "3.2 A". */
export function formatShort(value, unit) {
    return typeof value === "number" && Number.isFinite(value) ? `${Number(value.toFixed(6))} ${unit}` : kDash;
}

/** The next value of a wheel or an arrow key, kept within the limits and on a grid of `step`. */
export function stepped(value, step, minimum, maximum) {
    const decimals = Math.max(0, Math.ceil(-Math.log10(Math.abs(step))));
    const next = Number((value + step).toFixed(Math.max(decimals, 3)));
    return Math.min(Math.max(next, minimum), maximum);
}
