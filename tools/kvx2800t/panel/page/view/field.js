import { kDash, formatQuantity, formatShort, parseQuantity, stepped } from "../model/units.js";
import { element, setAttribute, setDisabled, setText } from "./dom.js";

/** The step of a key or of a notch of the wheel: 0.1, with Shift 1, with Alt 0.01. */
function stepOf(event) {
    if (event.shiftKey) return 1;
    return event.altKey ? 0.01 : 0.1;
}

const kKeys = new Map([
    ["ArrowUp", (event) => stepOf(event)],
    ["ArrowDown", (event) => -stepOf(event)],
    ["PageUp", () => 1],
    ["PageDown", () => -1],
]);

/** A level that is typed with its unit, or changed by wheel and arrow keys; both of the latter only where the focus is. */
export class Field {
    /**
     * @param {object} options
     * @param {string} options.label what is shown
     * @param {string} options.name what screen readers say
     * @param {string} options.unit
     * @param {(value: number, answered: (answer: object) => void) => void} options.set
     * @param {() => number | undefined} options.pending the value that is on its way, if one is
     */
    constructor({ id, label, name, unit, set, pending = () => undefined }) {
        Object.assign(this, { unit, set, pending });
        this.value = undefined;
        this.edited = false;
        this.limits = element("span", { class: "limits", id: `${id}-limits` });
        this.fault = element("p", { class: "fault", id: `${id}-fault`, role: "alert", hidden: true });
        this.input = element("input", {
            id,
            type: "text",
            role: "spinbutton",
            inputmode: "decimal",
            autocomplete: "off",
            spellcheck: "false",
            "aria-label": name,
            "aria-describedby": `${id}-limits ${id}-fault`,
            disabled: true,
            oninput: () => this.edit(),
            onkeydown: (event) => this.key(event),
            onfocus: () => this.input.select(),
            onblur: () => this.leave(),
        });
        this.input.addEventListener("wheel", (event) => this.wheel(event), { passive: false });
        this.node = element(
            "div",
            { class: "field" },
            element("label", { for: id }, label),
            this.limits,
            this.input,
            this.fault,
        );
    }

    /** @param {{value?: number, minimum?: number, maximum?: number, enabled: boolean}} what is known of it now */
    show({ value, minimum = 0, maximum, enabled }) {
        Object.assign(this, { value, minimum, maximum });
        const underWay = this.pending();
        setText(this.limits, formatShort(maximum, this.unit) === kDash ? "" : `${minimum} … ${formatShort(maximum, this.unit)}`);
        setDisabled(this.input, !enabled);
        setAttribute(this.input, "aria-valuenow", value);
        setAttribute(this.input, "aria-valuemin", maximum === undefined ? undefined : minimum);
        setAttribute(this.input, "aria-valuemax", maximum);
        setAttribute(this.node, "data-pending", underWay === undefined ? undefined : "");
        if (!enabled) this.edited = false;
        if (this.edited) return;
        const text = formatQuantity(enabled ? (underWay ?? value) : value, this.unit);
        if (this.input.value !== text) this.input.value = text;
        setAttribute(this.input, "aria-valuetext", text);
        setAttribute(this.node, "data-edited", undefined);
    }

    edit() {
        this.edited = true;
        setAttribute(this.node, "data-edited", "");
        this.complain("");
    }

    key(event) {
        if (event.key === "Enter") {
            event.preventDefault();
            this.take();
        } else if (event.key === "Escape") {
            this.leave();
        } else if (kKeys.has(event.key)) {
            event.preventDefault();
            this.step(kKeys.get(event.key)(event));
        }
    }

    wheel(event) {
        if (document.activeElement !== this.input) return;
        event.preventDefault();
        const turned = event.deltaY || event.deltaX;
        if (turned) this.step(turned < 0 ? stepOf(event) : -stepOf(event));
    }

    step(step) {
        const from = this.pending() ?? this.value;
        if (this.input.disabled || from === undefined) return;
        this.send(stepped(from, step, this.minimum, this.maximum ?? Infinity));
    }

    take() {
        const quantity = parseQuantity(this.input.value, this.unit);
        if (quantity.ok) this.send(quantity.value);
        else this.complain(quantity.reason);
    }

    send(value) {
        this.complain("");
        this.edited = false;
        this.set(value, (answer) => {
            if (!answer.ok) this.complain(answer.text);
        });
        this.show({ value: this.value, minimum: this.minimum, maximum: this.maximum, enabled: true });
        this.input.select();
    }

    /** What was typed and not entered is forgotten. */
    leave() {
        this.edited = false;
        this.complain("");
        this.show({ value: this.value, minimum: this.minimum, maximum: this.maximum, enabled: !this.input.disabled });
    }

    complain(text) {
        setText(this.fault, text);
        this.fault.hidden = text === "";
        setAttribute(this.input, "aria-invalid", text === "" ? undefined : "true");
    }
}
