import { isConnected } from "../model/state.js";
import { formatShort, kDash } from "../model/units.js";
import { ask, setAttribute, setDisabled, setText } from "./dom.js";

/** The outputs that a change of the source mode switches off. */
const kSwitchedOff = ["CH1", "CH2", "CH5", "CH6"];

const kEffects = [
    { mode: "normal", of: "CH1", text: (limits) => `CH1, CH2: ${limits} each` },
    { mode: "series", of: "CH5", text: (limits) => `CH5: ${limits}` },
    { mode: "parallel", of: "CH6", text: (limits) => `CH6: ${limits}` },
];

/** Outputs 1 and 2 apart, in series or in parallel, and what each makes of them. */
export class SourceModes {
    constructor(section, send) {
        this.buttons = [...section.querySelectorAll("[data-mode]")];
        this.effects = kEffects.map((effect) => ({ ...effect, node: section.querySelector(`[data-effect=${effect.mode}]`) }));
        for (const button of this.buttons) button.addEventListener("click", () => this.choose(button.dataset.mode, send));
    }

    async choose(mode, send) {
        if (mode === this.state.sourceMode) return;
        const on = this.state.channels.filter((channel) => kSwitchedOff.includes(channel.name) && channel.outputEnabled);
        const names = on.map((channel) => channel.name).join(", ");
        if (on.length === 0 || (await ask(`The change switches ${names} off.`, "Change"))) send({ do: "setSourceMode", mode });
    }

    show(state) {
        this.state = state;
        for (const button of this.buttons) {
            setDisabled(button, !isConnected(state));
            setAttribute(button, "aria-pressed", button.dataset.mode === state.sourceMode ? "true" : "false");
        }
        for (const { of, text, node } of this.effects) {
            const channel = state.channels?.find((one) => one.name === of);
            const limits = `${formatShort(channel?.maxVoltage, "V")} ${formatShort(channel?.maxCurrent, "A")}`;
            setText(node, channel ? text(limits) : kDash);
        }
    }
}
