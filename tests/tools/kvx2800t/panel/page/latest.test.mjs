import assert from "node:assert/strict";
import { test } from "node:test";
import { Latest } from "../../../../../tools/kvx2800t/panel/page/model/latest.js";

/** What has been sent, each with the function that answers it. */
function recorded() {
    const sent = [];
    const send = (request) => new Promise((resolve) => sent.push({ request, answer: resolve }));
    return { sent, latest: new Latest(send) };
}

const turn = () => new Promise((resolve) => setImmediate(resolve));

test("of settings that come while one is under way only the newest is sent", async () => {
    const { sent, latest } = recorded();
    const answers = [];
    for (const value of [1, 2, 3]) latest.put("CH1 V", value, (answer) => answers.push([value, answer]));
    assert.deepEqual(sent.map((one) => one.request), [1]);
    assert.equal(latest.pending("CH1 V"), 3);
    sent[0].answer("first");
    await turn();
    assert.deepEqual(sent.map((one) => one.request), [1, 3]);
    sent[1].answer("third");
    await turn();
    assert.equal(latest.pending("CH1 V"), undefined);
    assert.deepEqual(answers, [[3, "third"]]);
});

test("keys do not wait for each other", () => {
    const { sent, latest } = recorded();
    latest.put("CH1 V", 1);
    latest.put("CH2 V", 2);
    assert.deepEqual(sent.map((one) => one.request), [1, 2]);
});

test("what comes after an answer is sent at once", async () => {
    const { sent, latest } = recorded();
    latest.put("CH1 V", 1);
    sent[0].answer("first");
    await turn();
    latest.put("CH1 V", 2);
    assert.deepEqual(sent.map((one) => one.request), [1, 2]);
});
