import assert from "node:assert/strict";
import { test } from "node:test";
import { formatNumber, formatQuantity, formatShort, kDash, parseQuantity, stepped } from "../../../../../tools/kvx2800t/panel/page/model/units.js";

const kRead = [
    ["3.3", "V", 3.3],
    [" 3,3 ", "V", 3.3],
    ["3300 mV", "V", 3.3],
    ["3300mv", "V", 3.3],
    ["3.3 volts", "V", 3.3],
    ["250m", "A", 0.25],
    ["0.5 kA", "A", 500],
    ["12 µA", "A", 0.000012],
    ["-1", "V", -1],
    ["1e-1 A", "A", 0.1],
    [".5", "A", 0.5],
    ["100 ms", "s", 0.1],
    ["2 min", "s", 120],
];

for (const [text, unit, value] of kRead)
    test(`${JSON.stringify(text)} is ${value} ${unit}`, () => {
        assert.deepEqual(parseQuantity(text, unit), { ok: true, value });
    });

const kRefused = [
    ["", "V", "Type a value"],
    ["five", "V", "“five” is not a number"],
    ["1 A", "V", "“A” is not a unit for V"],
    ["1 V", "A", "“V” is not a unit for A"],
    ["1 MV", "V", "“MV” is not a unit for V"],
    ["1 min", "V", "“min” is not a unit for V"],
    ["1..2", "V", "“.2” is not a unit for V"],
    ["NaN", "V", "“NaN” is not a number"],
    ["1e999", "V", "The value is too large"],
];

for (const [text, unit, reason] of kRefused)
    test(`${JSON.stringify(text)} is refused as ${unit}`, () => {
        assert.deepEqual(parseQuantity(text, unit), { ok: false, reason });
    });

test("what is not known is shown as a dash", () => {
    for (const value of [null, undefined, NaN, Infinity, "5"]) {
        assert.equal(formatNumber(value), kDash);
        assert.equal(formatQuantity(value, "V"), kDash);
        assert.equal(formatShort(value, "V"), kDash);
    }
});

test("values are shown with their decimals and no negative zero", () => {
    assert.equal(formatNumber(3.3), "3.300");
    assert.equal(formatNumber(-0.0001), "0.000");
    assert.equal(formatNumber(-0.01, 2), "-0.01");
    assert.equal(formatQuantity(12.5, "W", 2), "12.50 W");
    assert.equal(formatShort(33, "V"), "33 V");
    assert.equal(formatShort(3.2, "A"), "3.2 A");
});

test("steps stay within the limits and on decimals", () => {
    assert.equal(stepped(0.2, 0.1, 0, 33), 0.3);
    assert.equal(stepped(0.05, -0.1, 0, 33), 0);
    assert.equal(stepped(32.95, 0.1, 0, 33), 33);
    assert.equal(stepped(1.234, 0.001, 0, 33), 1.235);
    assert.equal(stepped(3, -1, 0, 33), 2);
});
