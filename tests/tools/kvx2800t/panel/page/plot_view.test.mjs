import assert from "node:assert/strict";
import { test } from "node:test";
import { kLongest, kShortest, PlotView } from "../../../../../tools/kvx2800t/panel/page/model/plot_view.js";

test("a live view follows the newest reading", () => {
    const view = new PlotView(60);
    assert.deepEqual(view.range(100), [40, 100]);
    assert.deepEqual(view.range(110), [50, 110]);
    assert.deepEqual(view.range(undefined), [-60, 0]);
    assert.equal(view.isLive, true);
});

test("a paused view stays where it was until it is live again", () => {
    const view = new PlotView(60);
    view.pause(100);
    assert.deepEqual(view.range(200), [40, 100]);
    assert.equal(view.isLive, false);
    view.live();
    assert.deepEqual(view.range(200), [140, 200]);
});

test("what is drawn over is shown, unless it is next to nothing", () => {
    const view = new PlotView(60);
    view.zoomTo(50, 50.01);
    assert.equal(view.isLive, true);
    view.zoomTo(50, 55);
    assert.deepEqual(view.range(100), [50, 55]);
});

test("zooming keeps the newest reading of a live view, and the middle of another", () => {
    const view = new PlotView(60);
    view.zoomBy(0.5, 100);
    assert.deepEqual(view.range(100), [70, 100]);
    view.pause(100);
    view.zoomBy(2, 100);
    assert.deepEqual(view.range(100), [55, 115]);
});

test("zooming ends at the shortest and the longest span", () => {
    const view = new PlotView(0.6);
    view.zoomBy(0.5, 100);
    assert.equal(view.span, kShortest);
    view.setSpan(3000);
    view.zoomBy(2, 100);
    assert.equal(view.span, kLongest);
});

test("moving shows what was earlier and later", () => {
    const view = new PlotView(60);
    view.moveBy(-0.5, 100);
    assert.deepEqual(view.range(100), [10, 70]);
    view.moveBy(0.5, 100);
    assert.deepEqual(view.range(100), [40, 100]);
});

test("another span is live", () => {
    const view = new PlotView(60);
    view.pause(100);
    view.setSpan(10);
    assert.deepEqual(view.range(120), [110, 120]);
});
