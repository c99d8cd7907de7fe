import { remember, remembered } from "./dom.js";

const kOther = { light: "dark", dark: "light" };

/** Light or dark: what the system prefers, until the button says otherwise. */
export class Theme {
    /** @param {() => void} changed is called when colours are others */
    constructor(button, changed) {
        Object.assign(this, { button, changed });
        this.system = matchMedia("(prefers-color-scheme: dark)");
        this.chosen = remembered("theme", undefined);
        this.system.addEventListener("change", () => this.apply());
        button.addEventListener("click", () => this.toggle());
        this.apply();
    }

    get current() {
        if (this.chosen in kOther) return this.chosen;
        return this.system.matches ? "dark" : "light";
    }

    toggle() {
        this.chosen = kOther[this.current];
        remember("theme", this.chosen);
        this.apply();
    }

    apply() {
        document.documentElement.dataset.theme = this.current;
        this.button.textContent = this.current === "dark" ? "Light" : "Dark";
        this.button.setAttribute("aria-label", `Change to ${kOther[this.current]} colours`);
        this.changed();
    }
}
