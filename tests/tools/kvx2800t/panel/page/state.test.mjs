import assert from "node:assert/strict";
import { test } from "node:test";
import { initialState, isConnected, kMostErrors, kMostLines, linkTextOf, reduce, roleOf } from "../../../../../tools/kvx2800t/panel/page/model/state.js";

const kHello = { type: "hello", version: "1.0.0", resource: "TCPIP0::127.0.0.1::5025::SOCKET", simulated: false, channels: [] };
const kReading = {
    type: "state",
    sequence: 1,
    time: 0.5,
    link: { state: "connected", text: "" },
    identity: { manufacturer: "M", model: "KVX2833T", serial: "1", firmware: "V1.00" },
    sourceMode: "normal",
    channels: [{ name: "CH1", voltage: 5 }],
    lists: [{ channel: "CH1", state: "running", group: 1, groups: 2, cycle: 1 }],
};

const after = (...events) => events.reduce(reduce, initialState());
const kList = { type: "list", channel: "CH1", groups: [], cycles: 1, end: "off" };
const connected = () => after({ type: "opened" }, kHello, kReading, kList, { ...kReading, sequence: 2 });

function assertNothingIsKnown(state) {
    assert.equal(isConnected(state), false);
    assert.equal(state.channels, null);
    assert.equal(state.identity, null);
    assert.equal(state.sourceMode, null);
    assert.equal(state.time, null);
    assert.deepEqual(state.lists, []);
    assert.equal(state.programs.size, 0);
}

test("a reading makes the page connected", () => {
    const state = connected();
    assert.equal(isConnected(state), true);
    assert.deepEqual(state.channels, kReading.channels);
    assert.equal(state.programs.get("CH1"), kList);
    assert.equal(linkTextOf(state), "Connected");
});

test("nothing is known at first", () => {
    assertNothingIsKnown(initialState());
    assertNothingIsKnown(after({ type: "opened" }, kHello));
});

test("nothing outlives the connection to the server", () => {
    const state = after({ type: "opened" }, kHello, kReading, { type: "closed" });
    assertNothingIsKnown(state);
    assert.equal(linkTextOf(state), "Connection to the panel’s program lost");
    assertNothingIsKnown(reduce(state, { type: "opened" }));
});

test("nothing outlives the link, even if the message has it", () => {
    const state = reduce(connected(), { ...kReading, link: { state: "lost", text: "0xBFFA4224" } });
    assertNothingIsKnown(state);
    assert.equal(state.link.text, "0xBFFA4224");
    assert.equal(linkTextOf(state), "Link to the instrument lost");
});

test("nothing outlives readings that do not come", () => {
    assertNothingIsKnown(reduce(connected(), { type: "stale" }));
});

test("a reading after a loss is shown again", () => {
    assert.equal(isConnected(after(kReading, { type: "closed" }, { type: "opened" }, kReading)), true);
});

test("messages that are not known change nothing", () => {
    const state = connected();
    assert.equal(reduce(state, { type: "constructor" }), state);
    assert.equal(reduce(state, { type: "none" }), state);
});

test("errors are appended and the oldest are dropped", () => {
    const entries = Array.from({ length: kMostErrors }, (_, code) => ({ code, text: "" }));
    const state = after({ type: "errors", entries }, { type: "errors", entries: [{ code: -222, text: "Data out of range" }] });
    assert.equal(state.errors.length, kMostErrors);
    assert.equal(state.errors[0].code, 1);
    assert.deepEqual(state.errors.at(-1), { code: -222, text: "Data out of range" });
    assert.deepEqual(reduce(state, { type: "errors", cleared: true, entries: [] }).errors, []);
    assert.deepEqual(reduce(state, { type: "opened" }).errors, []);
});

test("lines are appended and the oldest are dropped", () => {
    let state = initialState();
    for (let id = 0; id <= kMostLines; id += 1) state = reduce(state, { type: "lines", id, scpi: [], c: [], python: [] });
    assert.equal(state.lines.length, kMostLines);
    assert.equal(state.lines[0].id, 1);
});

test("each channel has the list that came last", () => {
    const list = (channel, cycles) => ({ type: "list", channel, groups: [], cycles, end: "off" });
    const state = after(list("CH1", 1), list("CH2", 2), list("CH1", 3));
    assert.equal(state.programs.get("CH1").cycles, 3);
    assert.equal(state.programs.get("CH2").cycles, 2);
});

const kRoles = [
    ["normal", ["CH1", "CH2", "CH3", "CH4"]],
    ["series", ["CH3", "CH4", "CH5"]],
    ["parallel", ["CH3", "CH4", "CH6"]],
    [null, []],
];

for (const [mode, live] of kRoles)
    test(`in ${mode} the channels ${live} live`, () => {
        const names = ["CH1", "CH2", "CH3", "CH4", "CH5", "CH6"];
        assert.deepEqual(names.filter((name) => roleOf(name, mode).live), live);
    });

test("a channel says what a source mode does to it", () => {
    assert.equal(roleOf("CH1", "series").note, "In series: part of CH5");
    assert.equal(roleOf("CH5", "series").note, "CH1 and CH2 in series");
    assert.equal(roleOf("CH5", "normal").note, "Only in series");
    assert.equal(roleOf("CH6", "series").note, "Only in parallel");
    assert.equal(roleOf("CH1", "normal").note, "");
});
