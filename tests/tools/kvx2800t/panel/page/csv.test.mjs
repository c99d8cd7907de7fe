import assert from "node:assert/strict";
import { test } from "node:test";
import { toCsv } from "../../../../../tools/kvx2800t/panel/page/model/csv.js";

test("columns become lines", () => {
    assert.equal(toCsv(["time (s)", "CH1 (V)"], [[0, 0.1], [5, 4.999]]), "time (s),CH1 (V)\r\n0,5\r\n0.1,4.999\r\n");
});

test("what is not known is empty", () => {
    assert.equal(toCsv(["a", "b"], [[null, NaN], [undefined, 1]]), "a,b\r\n,\r\n,1\r\n");
});

test("texts with commas, quotation marks and ends of lines are quoted", () => {
    assert.equal(toCsv(['a "b"', "c,d"], [["e\nf"], ["g"]]), '"a ""b""","c,d"\r\n"e\nf",g\r\n');
});

test("a header alone is a file as well", () => {
    assert.equal(toCsv(["time (s)"], [[]]), "time (s)\r\n");
});
