import assert from "node:assert/strict";
import { test } from "node:test";
import { cornersOf, durationOf, faultOf, pathOf, roundMaximum, spanOf } from "../../../../../tools/kvx2800t/panel/page/model/list_curve.js";

const kGroups = [
    { voltage: 1, current: 0.5, duration: 2 },
    { voltage: 4, current: 1, duration: 1 },
    { voltage: 0, current: 1, duration: 1 },
];

test("a cycle takes as long as its groups", () => {
    assert.equal(durationOf(kGroups), 4);
    assert.equal(durationOf([]), 0);
});

test("each group is level and begins where the one before ends", () => {
    assert.deepEqual(cornersOf(kGroups, "voltage"), [
        { time: 0, value: 1 },
        { time: 2, value: 1 },
        { time: 2, value: 4 },
        { time: 3, value: 4 },
        { time: 3, value: 0 },
        { time: 4, value: 0 },
    ]);
    assert.equal(cornersOf(kGroups, "current")[0].value, 0.5);
});

test("the curve fills its box", () => {
    assert.equal(
        pathOf(kGroups, "voltage", { width: 100, height: 40, maximum: 4 }),
        "M0 30L50 30L50 0L75 0L75 40L100 40",
    );
});

test("what has no duration or no height has no curve", () => {
    assert.equal(pathOf([], "voltage", { width: 100, height: 40, maximum: 4 }), "");
    assert.equal(pathOf(kGroups, "voltage", { width: 100, height: 40, maximum: 0 }), "");
});

test("the group that runs has its place on the curve", () => {
    assert.deepEqual(spanOf(kGroups, 1), { from: 0, to: 2 });
    assert.deepEqual(spanOf(kGroups, 3), { from: 3, to: 4 });
    assert.equal(spanOf(kGroups, 0), undefined);
    assert.equal(spanOf(kGroups, 4), undefined);
});

test("axes end at 1, 2 or 5", () => {
    assert.deepEqual([0, 0.3, 1, 1.1, 4, 5, 33, 66].map(roundMaximum), [1, 0.5, 1, 2, 5, 5, 50, 100]);
});

test("a list that cannot be loaded says why", () => {
    assert.equal(faultOf(kGroups), undefined);
    assert.equal(faultOf([]), "The list has no groups");
    assert.equal(faultOf([kGroups[0], { voltage: 1, current: 1, duration: 0 }]), "Group 2 takes no time");
    assert.equal(faultOf(Array(512).fill(kGroups[0])), undefined);
    assert.equal(faultOf(Array(513).fill(kGroups[0])), "A list has 512 groups at most");
});
