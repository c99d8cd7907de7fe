import { formatNumber } from "../model/units.js";
import { roleOf } from "../model/state.js";
import { Field } from "./field.js";
import { announce, element, setAttribute, setDisabled, setText } from "./dom.js";

const kReadings = [
    { key: "voltage", name: "Voltage", unit: "V", digits: 3 },
    { key: "current", name: "Current", unit: "A", digits: 3 },
    { key: "power", name: "Power", unit: "W", digits: 3 },
];

const kLevels = [
    { key: "voltageLevel", name: "Voltage", unit: "V", maximum: "maxVoltage", action: "setVoltage" },
    { key: "currentLimit", name: "Current", unit: "A", maximum: "maxCurrent", action: "setCurrent" },
];

/** Protections reach a tenth beyond what the channel gives. */
const kProtections = [
    { short: "OVP", name: "Over-voltage protection", unit: "V", enabled: "ovpEnabled", level: "ovpLimit", maximum: "maxVoltage", action: "setOvp" },
    { short: "OCP", name: "Over-current protection", unit: "A", enabled: "ocpEnabled", level: "ocpLevel", maximum: "maxCurrent", action: "setOcp" },
];
const kBeyond = 1.1;

const kRegulations = {
    CV: "Constant voltage",
    CC: "Constant current",
    off: "Output off",
    unregulated: "Unregulated",
};

/** One channel: readings, output, levels, protections. */
export class ChannelCard {
    /** @param {(request: object) => Promise<object>} send; @param {Latest} latest for settings that come fast */
    constructor(name, send, latest) {
        Object.assign(this, { name, send, latest });
        this.tripped = "";
        this.makeHead();
        this.makeReadings();
        this.levels = kLevels.map((level) => this.makeLevel(level));
        this.protections = kProtections.map((protection) => this.makeProtection(protection));
        this.node = element(
            "article",
            { class: `card ${name.toLowerCase()}`, "aria-labelledby": `${name}-name`, "data-channel": name },
            this.head,
            this.readings,
            element("div", { class: "fields" }, ...this.levels.map(({ field }) => field.node)),
            element("div", { class: "protections" }, ...this.protections.map(({ node }) => node)),
        );
        this.show(undefined, null);
    }

    makeHead() {
        this.trip = element("span", { class: "trip-text" });
        this.tripRow = element("p", { class: "trip", hidden: true }, this.trip, element("span", { class: "trip-hint" }, "On ends it"));
        this.note = element("p", { class: "note" });
        this.regulation = element("abbr", { class: "regulation" });
        this.output = element(
            "button",
            { type: "button", role: "switch", class: "output", "aria-checked": "false", "aria-label": `${this.name} output`, onclick: () => this.toggle() },
            element("span", { class: "knob", "aria-hidden": "true" }),
            (this.outputText = element("span", { class: "output-text", "aria-hidden": "true" }, "Off")),
        );
        this.head = element(
            "header",
            { class: "card-head" },
            element("h3", { id: `${this.name}-name` }, this.name),
            this.regulation,
            this.output,
            element("div", { class: "card-notes" }, this.note, this.tripRow),
        );
    }

    makeReadings() {
        this.values = new Map();
        this.readings = element("dl", { class: "readings" });
        for (const reading of kReadings) {
            const value = element("span", { class: "value", "data-reading": reading.key });
            this.values.set(reading, value);
            this.readings.append(
                element(
                    "div",
                    { class: `reading ${reading.key}` },
                    element("dt", { class: "unseen" }, `${reading.name} measured`),
                    element("dd", {}, value, " ", element("span", { class: "unit" }, reading.unit)),
                ),
            );
        }
    }

    makeLevel(level) {
        const key = `${this.name} ${level.action}`;
        const field = new Field({
            id: `${this.name}-${level.key}`,
            label: `Set ${level.name.toLowerCase()}`,
            name: `${this.name} set ${level.name.toLowerCase()}`,
            unit: level.unit,
            set: (value, answered) => this.latest.put(key, { do: level.action, channel: this.name, value }, answered),
            pending: () => this.latest.pending(key)?.value,
        });
        return { level, field };
    }

    makeProtection(protection) {
        const key = `${this.name} ${protection.action}`;
        const put = (change, answered) => {
            const { enabled, value } = this.latest.pending(key) ?? this.protectionOf(protection);
            this.latest.put(key, { do: protection.action, channel: this.name, enabled, value, ...change }, answered);
        };
        const box = element("input", { type: "checkbox", id: `${this.name}-${protection.enabled}`, onchange: () => put({ enabled: box.checked }) });
        const field = new Field({
            id: `${this.name}-${protection.level}`,
            label: "at",
            name: `${this.name} ${protection.name.toLowerCase()} level`,
            unit: protection.unit,
            set: (value, answered) => put({ value }, answered),
            pending: () => this.latest.pending(key)?.value,
        });
        const lamp = element("span", { class: "trip-lamp", "aria-hidden": "true" });
        const node = element(
            "div",
            { class: "protection" },
            element("label", { class: "box" }, box, element("abbr", { title: protection.name }, protection.short)),
            field.node,
            lamp,
        );
        return { protection, box, field, node };
    }

    protectionOf(protection) {
        return { enabled: this.channel[protection.enabled], value: this.channel[protection.level] };
    }

    toggle() {
        if (this.channel) this.send({ do: "setOutput", channel: this.name, on: !this.channel.outputEnabled });
    }

    /** @param {object | undefined} channel undefined: nothing is known. */
    show(channel, sourceMode) {
        const role = roleOf(this.name, sourceMode);
        const enabled = channel !== undefined && role.live;
        this.channel = channel;
        setAttribute(this.node, "data-live", enabled ? "yes" : "no");
        setText(this.note, role.note);
        this.showOutput(channel, enabled);
        for (const [reading, value] of this.values) setText(value, formatNumber(enabled ? channel[reading.key] : undefined, reading.digits));
        for (const { level, field } of this.levels)
            field.show({ value: channel?.[level.key], maximum: channel?.[level.maximum], enabled });
        for (const protection of this.protections) this.showProtection(protection, channel, enabled);
        this.showTrip(channel?.tripped ?? []);
    }

    showOutput(channel, enabled) {
        const on = channel?.outputEnabled === true;
        const regulation = enabled ? channel.regulation : "";
        setDisabled(this.output, !enabled && !on);
        setAttribute(this.output, "aria-checked", on ? "true" : "false");
        setText(this.outputText, channel ? (on ? "On" : "Off") : "–");
        setAttribute(this.node, "data-regulation", regulation);
        setText(this.regulation, regulation === "off" ? "" : regulation === "unregulated" ? "UR" : regulation);
        setAttribute(this.regulation, "title", kRegulations[regulation]);
    }

    showProtection({ protection, box, field, node }, channel, enabled) {
        const underWay = this.latest.pending(`${this.name} ${protection.action}`);
        const on = (underWay ?? (channel && this.protectionOf(protection)))?.enabled === true;
        if (box.checked !== on) box.checked = on;
        setDisabled(box, !enabled);
        setAttribute(node, "data-tripped", channel?.tripped.includes(protection.short) ? "" : undefined);
        const beyond = channel ? Number((channel[protection.maximum] * kBeyond).toFixed(6)) : undefined;
        field.show({ value: channel?.[protection.level], maximum: beyond, enabled });
    }

    showTrip(tripped) {
        const text = tripped.length === 0 ? "" : `${tripped.join(" and ")} tripped`;
        if (text === this.tripped) return;
        this.tripped = text;
        setText(this.trip, text);
        this.tripRow.hidden = text === "";
        this.note.hidden = text !== "";
        setAttribute(this.node, "data-tripped", text === "" ? undefined : tripped.join(" "));
        if (text) announce(`${this.name}: ${text}. The output is off.`);
    }
}
