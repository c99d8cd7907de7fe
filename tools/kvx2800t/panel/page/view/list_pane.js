import { isConnected, roleOf } from "../model/state.js";
import { durationOf, faultOf, kMostGroups, pathOf, roundMaximum, spanOf } from "../model/list_curve.js";
import { parseQuantity } from "../model/units.js";
import { drawn, element, setAttribute, setDisabled, setText } from "./dom.js";

const kBox = { width: 600, height: 110 };

const kColumns = [
    { key: "voltage", name: "Voltage", unit: "V" },
    { key: "current", name: "Current", unit: "A" },
    { key: "duration", name: "Time", unit: "s" },
];

const kEnds = [
    ["off", "switch the output off"],
    ["last", "keep the last group"],
];

const kNewGroup = { voltage: 1, current: 0.1, duration: 1 };

/** The list program of a channel: a curve, a table that is edited, and its run. */
export class ListPane {
    constructor(pane, names, send) {
        Object.assign(this, { send, drafts: new Map(), programs: new Map(), open: false });
        this.channel = names[0];
        this.makeHead(names);
        this.makeCurve();
        this.makeTable();
        pane.append(this.head, this.curve, this.tableBox, this.foot);
        this.writeTable();
    }

    makeHead(names) {
        const choice = element(
            "select",
            { id: "list-channel", onchange: () => this.choose(choice.value) },
            ...names.map((name) => element("option", { value: name }, name)),
        );
        const button = (text, action, primary) =>
            element("button", { type: "button", class: primary ? "primary" : undefined, onclick: action, disabled: true }, text);
        this.run = button("Run", () => this.start(), true);
        this.pause = button("Pause", () => this.send({ do: "pauseList", channel: this.channel }));
        this.stop = button("Stop", () => this.send({ do: "stopList", channel: this.channel }));
        this.load = button("Load", () => this.loadDraft());
        this.read = button("Read back", () => this.readBack());
        this.status = element("span", { class: "list-status", role: "status" });
        this.head = element(
            "div",
            { class: "pane-head" },
            element("label", { class: "inline" }, "Channel ", choice),
            element("div", { class: "buttons" }, this.load, this.run, this.pause, this.stop, this.read),
        );
    }

    makeCurve() {
        this.paths = { voltage: drawn("path", { class: "list-voltage" }), current: drawn("path", { class: "list-current" }) };
        this.active = drawn("rect", { class: "list-active", y: 0, height: kBox.height, width: 0 });
        this.drawing = drawn(
            "svg",
            { viewBox: `0 0 ${kBox.width} ${kBox.height}`, preserveAspectRatio: "none", class: "list-drawing", role: "img" },
            this.active,
            this.paths.current,
            this.paths.voltage,
        );
        this.maxima = { voltage: element("span", { class: "list-voltage-text" }), current: element("span", { class: "list-current-text" }) };
        this.length = element("span", {});
        this.curve = element(
            "div",
            { class: "list-curve" },
            element("p", { class: "list-axis" }, this.maxima.voltage, this.maxima.current, this.length, this.status),
            this.drawing,
        );
    }

    makeTable() {
        this.rows = element("tbody");
        const header = (text) => element("th", { scope: "col" }, text);
        this.tableBox = element(
            "div",
            { class: "scroll", tabindex: "0", role: "region", "aria-label": "Groups of the list" },
            element(
                "table",
                { class: "groups" },
                element("thead", {}, element("tr", {}, header("Group"), ...kColumns.map(({ name, unit }) => header(`${name} (${unit})`)), header("Change"))),
                this.rows,
            ),
        );
        this.cycles = element("input", { id: "list-cycles", type: "number", min: "0", max: "99999", value: "1", onchange: () => this.changeProgram({ cycles: this.readCycles() }) });
        this.end = element("select", { id: "list-end", onchange: () => this.changeProgram({ end: this.end.value }) }, ...kEnds.map(([value, text]) => element("option", { value }, text)));
        this.foot = element(
            "div",
            { class: "pane-head" },
            (this.add = element("button", { type: "button", onclick: () => this.insert(this.draft.groups.length, true) }, "Add group")),
            element("label", { class: "inline", title: "0 runs without end" }, "Cycles ", this.cycles),
            element("label", { class: "inline" }, "then ", this.end),
        );
    }

    /** What is edited; an entry for each channel, made of what the instrument has. */
    get draft() {
        if (!this.drafts.has(this.channel)) {
            const program = this.programs.get(this.channel);
            this.drafts.set(this.channel, {
                groups: (program?.groups ?? []).map((group) => ({ ...group })),
                cycles: program?.cycles ?? 1,
                end: program?.end ?? "off",
                edited: false,
            });
        }
        return this.drafts.get(this.channel);
    }

    /** The pane is seen, or no longer: the list is read when it is seen first. */
    setOpen(open) {
        this.open = open;
        this.readOnce();
    }

    choose(channel) {
        this.channel = channel;
        this.writeTable();
        this.readOnce();
        this.show(this.state);
    }

    readOnce() {
        if (this.open && this.state && isConnected(this.state) && !this.programs.has(this.channel) && this.reading !== this.channel) {
            this.reading = this.channel;
            this.send({ do: "readList", channel: this.channel });
        }
    }

    readBack() {
        this.drafts.delete(this.channel);
        this.send({ do: "readList", channel: this.channel });
    }

    loadDraft() {
        const { groups, cycles, end } = this.draft;
        const fault = faultOf(groups);
        if (fault) {
            this.tell(fault);
            return Promise.resolve({ ok: false });
        }
        this.draft.edited = false;
        return this.send({ do: "loadList", channel: this.channel, groups, cycles, end }).then((answer) => {
            if (!answer.ok) this.draft.edited = true;
            this.tell(answer.ok ? "" : answer.text);
            return answer;
        });
    }

    async start() {
        const loaded = this.draft.edited ? await this.loadDraft() : { ok: true };
        if (loaded.ok) await this.send({ do: "runList", channel: this.channel });
    }

    tell(text) {
        this.told = text;
        if (this.state) this.show(this.state);
    }

    readCycles() {
        const cycles = Number(this.cycles.value);
        return Number.isInteger(cycles) && cycles >= 0 ? cycles : 1;
    }

    changeProgram(change) {
        Object.assign(this.draft, change, { edited: true });
        this.told = "";
        this.drawCurve();
        this.show(this.state);
    }

    insert(index, focus) {
        if (this.draft.groups.length >= kMostGroups) return;
        const like = this.draft.groups[index - 1] ?? this.draft.groups[0] ?? kNewGroup;
        this.draft.groups.splice(index, 0, { ...like });
        this.writeTable();
        this.changeProgram({});
        if (focus) this.rows.rows[index].querySelector("input").focus();
    }

    remove(index) {
        this.draft.groups.splice(index, 1);
        this.writeTable();
        this.changeProgram({});
        (this.rows.rows[Math.min(index, this.draft.groups.length - 1)]?.querySelector("button.remove") ?? this.add).focus();
    }

    writeTable() {
        this.cycles.value = String(this.draft.cycles);
        this.end.value = this.draft.end;
        this.rows.replaceChildren(...this.draft.groups.map((_, index) => this.rowOf(index)));
        this.activeGroup = undefined;
        this.drawCurve();
    }

    rowOf(index) {
        const number = index + 1;
        return element(
            "tr",
            {},
            element("th", { scope: "row" }, String(number)),
            ...kColumns.map((column) => element("td", {}, this.cellOf(index, column))),
            element(
                "td",
                {},
                element("button", { type: "button", class: "small", "aria-label": `Insert a group after ${number}`, onclick: () => this.insert(index + 1, true) }, "+"),
                element("button", { type: "button", class: "small remove", "aria-label": `Delete group ${number}`, onclick: () => this.remove(index) }, "×"),
            ),
        );
    }

    cellOf(index, { key, name, unit }) {
        const input = element("input", {
            type: "text",
            inputmode: "decimal",
            autocomplete: "off",
            "aria-label": `Group ${index + 1} ${name.toLowerCase()}`,
            onchange: () => {
                const quantity = parseQuantity(input.value, unit);
                setAttribute(input, "aria-invalid", quantity.ok ? undefined : "true");
                if (!quantity.ok) return this.tell(`Group ${index + 1}: ${quantity.reason}`);
                input.value = String(quantity.value);
                this.draft.groups[index][key] = quantity.value;
                return this.changeProgram({});
            },
        });
        input.value = String(Number(this.draft.groups[index][key].toFixed(6)));
        return input;
    }

    drawCurve() {
        const { groups } = this.draft;
        for (const { key, unit } of kColumns.slice(0, 2)) {
            const maximum = roundMaximum(Math.max(0, ...groups.map((group) => group[key])));
            this.paths[key].setAttribute("d", pathOf(groups, key, { ...kBox, maximum }));
            setText(this.maxima[key], groups.length === 0 ? "" : `0 … ${maximum} ${unit}`);
        }
        const duration = Number(durationOf(groups).toFixed(3));
        setText(this.length, groups.length === 0 ? "No groups" : `${duration} s a cycle`);
        this.drawing.setAttribute("aria-label", `List of ${groups.length} groups, ${duration} seconds a cycle`);
    }

    show(state) {
        this.state = state;
        if (state.programs !== this.programs) this.takePrograms(state.programs);
        if (!isConnected(state)) this.reading = undefined;
        this.readOnce();
        const running = state.lists.find((list) => list.channel === this.channel);
        const enabled = isConnected(state) && roleOf(this.channel, state.sourceMode).live;
        const busy = running?.state === "running" || running?.state === "paused" || running?.state === "ready";
        setDisabled(this.load, !enabled || busy || this.draft.groups.length === 0);
        setDisabled(this.run, !enabled || running?.state === "running" || this.draft.groups.length === 0);
        setDisabled(this.pause, !enabled || running?.state !== "running");
        setDisabled(this.stop, !enabled || !busy);
        setDisabled(this.read, !isConnected(state));
        this.showRun(running);
        setText(this.status, this.told || this.statusOf(running, state));
    }

    takePrograms(programs) {
        const before = this.programs;
        this.programs = programs;
        for (const channel of new Set([...before.keys(), ...programs.keys()]))
            if (before.get(channel) !== programs.get(channel) && !this.drafts.get(channel)?.edited) {
                this.drafts.delete(channel);
                if (channel === this.channel) this.writeTable();
            }
    }

    showRun(running) {
        const active = running?.state === "running" || running?.state === "paused" ? running.group : 0;
        const span = spanOf(this.draft.groups, active);
        const scale = kBox.width / (durationOf(this.draft.groups) || 1);
        setAttribute(this.active, "x", span ? span.from * scale : 0);
        setAttribute(this.active, "width", span ? (span.to - span.from) * scale : 0);
        if (active === this.activeGroup) return;
        this.activeGroup = active;
        [...this.rows.rows].forEach((row, index) => setAttribute(row, "data-active", index + 1 === active ? "" : undefined));
        if (!this.rows.contains(document.activeElement)) this.rows.rows[active - 1]?.scrollIntoView({ block: "nearest" });
    }

    statusOf(running, state) {
        if (!isConnected(state)) return "";
        const edited = this.draft.edited ? "Edited, not loaded. " : "";
        if (!running || running.state === "stopped") return `${edited}Stopped`;
        if (running.state === "ready") return `${edited}Ready: waits for the output or a trigger`;
        const where = `group ${running.group} of ${running.groups}`;
        const cycle = running.cycles === 0 ? ", without end" : `, cycle ${running.cycle} of ${running.cycles}`;
        return `${edited}${running.state === "running" ? "Running" : "Paused"}: ${where}${cycle}`;
    }
}
