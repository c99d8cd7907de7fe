import assert from "node:assert/strict";
import { test } from "node:test";
import { Ring } from "../../../../../tools/kvx2800t/panel/page/model/ring.js";

function filled(rows, capacity = 4) {
    const ring = new Ring(2, capacity);
    for (const row of rows) ring.push(row);
    return ring;
}

test("an empty ring has no times and no rows", () => {
    const ring = new Ring(2, 4);
    assert.equal(ring.newest, undefined);
    assert.equal(ring.oldest, undefined);
    assert.deepEqual(ring.slice([0, 1]), [[], []]);
});

test("the newest rows are kept", () => {
    const ring = filled([[1, 10], [2, 20], [3, 30], [4, 40], [5, 50], [6, 60]]);
    assert.equal(ring.length, 4);
    assert.equal(ring.oldest, 3);
    assert.equal(ring.newest, 6);
    assert.deepEqual(ring.slice([0, 1]), [[3, 4, 5, 6], [30, 40, 50, 60]]);
});

test("a slice has both of its ends", () => {
    const ring = filled([[1, 10], [2, 20], [3, 30], [4, 40], [5, 50]]);
    assert.deepEqual(ring.slice([1], 3, 4), [[30, 40]]);
    assert.deepEqual(ring.slice([1], 2.5, 3.5), [[30]]);
    assert.deepEqual(ring.slice([1], 6, 7), [[]]);
    assert.deepEqual(ring.slice([1], 4, 3), [[]]);
});

test("what is not known stays so", () => {
    assert.deepEqual(filled([[1, 10], [2, null], [3]]).slice([1]), [[10, null, null]]);
});

test("a cleared ring begins anew", () => {
    const ring = filled([[1, 10], [2, 20], [3, 30], [4, 40], [5, 50]]);
    ring.clear();
    ring.push([9, 90]);
    assert.deepEqual(ring.slice([0, 1]), [[9], [90]]);
});
