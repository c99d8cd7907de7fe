import { toCsv } from "../model/csv.js";
import { PlotView } from "../model/plot_view.js";
import { Ring } from "../model/ring.js";
import { isConnected } from "../model/state.js";
import { formatNumber } from "../model/units.js";
import { byId, download, element, remember, remembered, setAttribute, setText } from "./dom.js";

/** An hour at ten readings a second. */
const kCapacity = 36000;

const kQuantities = [
    { key: "voltage", unit: "V", name: "Voltage", dash: [], side: 3 },
    { key: "current", unit: "A", name: "Current", dash: [7, 4], side: 1 },
    { key: "power", unit: "W", name: "Power", dash: [2, 3], side: 1 },
];

const clock = (seconds, digits) => {
    const time = new Date(seconds * 1000);
    const two = (number) => String(number).padStart(2, "0");
    const fraction = digits > 0 ? (time.getMilliseconds() / 1000).toFixed(digits).slice(1) : "";
    return `${two(time.getHours())}:${two(time.getMinutes())}:${two(time.getSeconds())}${fraction}`;
};

/** The colour that an element has, whatever it is made of. */
const colourOf = (node, property = "color") => getComputedStyle(node).getPropertyValue(property);

/** What is measured, drawn as it comes. uPlot is not there in builds that were made without npm's packages. */
export class Plot {
    /** @param {string[]} names of channels */
    constructor(names) {
        this.names = names;
        this.ring = new Ring(1 + names.length * kQuantities.length, kCapacity);
        this.view = new PlotView(remembered("plot.span", 60));
        this.offset = 0;
        this.place = byId("plot");
        this.makeChips();
        this.listen();
        this.start();
    }

    async start() {
        try {
            this.uPlot = (await import("../uPlot.esm.js")).default;
        } catch {
            this.place.append(element("p", { class: "empty" }, "This build of the panel has no plot: npm was not there when it was made. CSV still has the readings."));
            return;
        }
        new ResizeObserver(() => this.resize()).observe(this.place);
        this.rebuild();
    }

    makeChips() {
        const chosen = remembered("plot.chosen", { names: this.names.slice(0, 4), keys: ["voltage", "current"] });
        const chip = (text, on, className) =>
            element("button", { type: "button", class: `chip ${className}`, "aria-pressed": on ? "true" : "false", onclick: (event) => this.choose(event.currentTarget) }, text);
        this.channelChips = this.names.map((name) => chip(name, chosen.names.includes(name), name.toLowerCase()));
        this.quantityChips = kQuantities.map(({ key, unit, name }) => {
            const one = chip(unit, chosen.keys.includes(key), key);
            one.setAttribute("aria-label", `${name} (${unit})`);
            return one;
        });
        byId("plot-channels").append(...this.channelChips);
        byId("plot-quantities").append(...this.quantityChips);
    }

    choose(chip) {
        chip.setAttribute("aria-pressed", chip.getAttribute("aria-pressed") === "true" ? "false" : "true");
        remember("plot.chosen", { names: this.chosenNames, keys: this.chosenQuantities.map(({ key }) => key) });
        this.rebuild();
    }

    get chosenNames() {
        return this.names.filter((_, index) => this.channelChips[index].getAttribute("aria-pressed") === "true");
    }

    get chosenQuantities() {
        return kQuantities.filter((_, index) => this.quantityChips[index].getAttribute("aria-pressed") === "true");
    }

    /** What is drawn, in the order of its columns. */
    get curves() {
        return this.chosenNames.flatMap((name) => this.chosenQuantities.map((quantity) => ({ name, quantity, column: this.columnOf(name, quantity) })));
    }

    columnOf(name, quantity) {
        return 1 + this.names.indexOf(name) * kQuantities.length + kQuantities.indexOf(quantity);
    }

    listen() {
        const at = (change) => () => {
            change(this.view, this.ring.newest);
            this.showView();
            this.draw();
        };
        const span = byId("plot-span");
        if ([...span.options].some((option) => Number(option.value) === this.view.span)) span.value = String(this.view.span);
        span.addEventListener("change", at((view) => {
            view.setSpan(Number(span.value));
            remember("plot.span", view.span);
        }));
        byId("plot-pause").addEventListener("click", at((view, newest) => (view.isLive ? view.pause(newest) : view.live())));
        byId("plot-in").addEventListener("click", at((view, newest) => view.zoomBy(0.5, newest)));
        byId("plot-out").addEventListener("click", at((view, newest) => view.zoomBy(2, newest)));
        byId("plot-earlier").addEventListener("click", at((view, newest) => view.moveBy(-0.5, newest)));
        byId("plot-later").addEventListener("click", at((view, newest) => view.moveBy(0.5, newest)));
        byId("plot-live").addEventListener("click", at((view) => view.setSpan(Number(span.value))));
        byId("plot-csv").addEventListener("click", () => this.exportCsv());
        byId("plot-png").addEventListener("click", () => this.exportPng());
        this.showView();
    }

    showView() {
        setAttribute(byId("plot-pause"), "aria-pressed", this.view.isLive ? "false" : "true");
    }

    /** A message of readings, or of their end, which is a gap. */
    take(state, message) {
        if (typeof message.time !== "number") return;
        if (this.ring.newest !== undefined && message.time < this.ring.newest) this.ring.clear();
        this.offset ||= Date.now() / 1000 - message.time;
        if (this.ring.length === 0) this.offset = Date.now() / 1000 - message.time;
        const values = isConnected(state)
            ? this.names.flatMap((name) => {
                  const channel = state.channels.find((one) => one.name === name);
                  return kQuantities.map(({ key }) => channel?.[key] ?? null);
              })
            : [];
        this.ring.push([message.time, ...values]);
        if (this.view.isLive) this.drawSoon();
    }

    drawSoon() {
        if (this.soon) return;
        this.soon = requestAnimationFrame(() => {
            this.soon = undefined;
            this.draw();
        });
    }

    /** Everything anew: other curves, other colours. */
    rebuild() {
        if (!this.uPlot) return;
        this.chart?.destroy();
        this.chart = new this.uPlot(this.options(), this.data(), this.place);
        this.setLabel();
    }

    options() {
        const ink = colourOf(this.place);
        const grid = { stroke: colourOf(this.place, "border-top-color"), width: 1 };
        const axis = { stroke: ink, grid, ticks: { ...grid, size: 5 }, font: "11px system-ui, sans-serif" };
        const shown = this.chosenQuantities;
        return {
            ...this.size(),
            legend: { show: false },
            cursor: { drag: { x: true, y: false, setScale: false }, points: { size: 6 }, bind: { dblclick: () => () => this.goLive() } },
            scales: {
                x: { time: true, range: () => this.view.range(this.ring.newest).map((time) => time + this.offset) },
                ...Object.fromEntries(shown.map(({ unit }) => [unit, { range: (_, low, high) => [Math.min(low ?? 0, 0), Math.max((high ?? 1) * 1.08, 0.1)] }])),
            },
            axes: [
                { ...axis, space: 80, size: 32, values: (_, times, __, ___, step) => times.map((time) => clock(time, step < 1 ? 1 : 0)) },
                ...shown.map(({ unit, side }, index) => ({
                    ...axis,
                    scale: unit,
                    side,
                    size: 56,
                    grid: index === 0 ? grid : { show: false },
                    values: (_, values) => values.map((value) => `${Number(value.toFixed(3))} ${unit}`),
                })),
            ],
            series: [
                {},
                ...this.curves.map(({ name, quantity }) => ({
                    label: `${name} (${quantity.unit})`,
                    scale: quantity.unit,
                    stroke: colourOf(this.channelChips[this.names.indexOf(name)], "border-left-color"),
                    width: 2,
                    dash: quantity.dash,
                    points: { show: false },
                })),
            ],
            hooks: { setSelect: [(chart) => this.zoomToSelection(chart)], setCursor: [(chart) => this.showCursor(chart)] },
        };
    }

    size() {
        return { width: Math.max(this.place.clientWidth, 200), height: Math.max(this.place.clientHeight, 140) };
    }

    resize() {
        this.chart?.setSize(this.size());
    }

    /** What is drawn now: [times, values of the first curve, ...]; a reading more at each end, so that curves reach the edges. */
    data() {
        const [from, to] = this.view.range(this.ring.newest);
        const margin = Math.max(1, (to - from) / 10);
        const [times, ...values] = this.ring.slice([0, ...this.curves.map(({ column }) => column)], from - margin, to + margin);
        return [times.map((time) => time + this.offset), ...values];
    }

    draw() {
        const [from, to] = this.view.range(this.ring.newest);
        Object.assign(this.place.dataset, { from, to });
        this.chart?.setData(this.data());
    }

    setLabel() {
        const curves = this.curves.map(({ name, quantity }) => `${name} ${quantity.name.toLowerCase()}`);
        this.place.setAttribute("aria-label", `Plot of ${curves.join(", ") || "nothing"}`);
    }

    goLive() {
        this.view.live();
        this.showView();
        this.draw();
    }

    zoomToSelection(chart) {
        const { left, width } = chart.select;
        if (width <= 2) return;
        this.view.zoomTo(chart.posToVal(left, "x") - this.offset, chart.posToVal(left + width, "x") - this.offset);
        chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
        this.showView();
        this.draw();
    }

    showCursor(chart) {
        const { idx } = chart.cursor;
        if (idx === null || idx === undefined) return setText(byId("plot-cursor"), "");
        const values = this.curves.map(({ name, quantity }, index) => `${name} ${formatNumber(chart.data[index + 1][idx])} ${quantity.unit}`);
        return setText(byId("plot-cursor"), [clock(chart.data[0][idx], 1), ...values].join("  "));
    }

    /** What is seen, of the chosen channels, with all of their quantities. */
    exportCsv() {
        const [from, to] = this.view.range(this.ring.newest);
        const columns = this.chosenNames.flatMap((name) => kQuantities.map((quantity) => ({ name: `${name} (${quantity.unit})`, column: this.columnOf(name, quantity) })));
        const [times, ...values] = this.ring.slice([0, ...columns.map(({ column }) => column)], from, to);
        const clocks = times.map((time) => new Date((time + this.offset) * 1000).toISOString());
        const text = toCsv(["time (s)", "clock", ...columns.map(({ name }) => name)], [times, clocks, ...values]);
        download("kvx2800t-readings.csv", new Blob([text], { type: "text/csv" }));
    }

    /** The plot as it is seen, with the names of its curves below. */
    exportPng() {
        if (!this.chart) return;
        const drawing = this.chart.ctx.canvas;
        const ratio = devicePixelRatio || 1;
        const line = Math.round(24 * ratio);
        const picture = element("canvas", { width: drawing.width, height: drawing.height + line });
        const context = picture.getContext("2d");
        context.fillStyle = colourOf(this.place.closest(".pane"), "background-color");
        context.fillRect(0, 0, picture.width, picture.height);
        context.drawImage(drawing, 0, 0);
        context.font = `${Math.round(12 * ratio)}px system-ui, sans-serif`;
        context.textBaseline = "middle";
        let x = 8 * ratio;
        this.chart.series.slice(1).forEach((series) => {
            context.fillStyle = series._stroke ?? colourOf(this.place);
            context.fillText(series.label, x, drawing.height + line / 2);
            x += context.measureText(series.label).width + 14 * ratio;
        });
        picture.toBlob((blob) => download("kvx2800t-plot.png", blob), "image/png");
    }
}
