import { setAttribute } from "./dom.js";

/** Tabs of which one has the focus: arrow keys, Home and End choose, as WAI-ARIA's pattern says. */
export class Tabs {
    /** @param {HTMLElement} list the element of role tablist; @param {(id: string) => void} chosen */
    constructor(list, chosen = () => {}) {
        this.tabs = [...list.querySelectorAll('[role="tab"]')];
        this.chosen = chosen;
        for (const tab of this.tabs) tab.addEventListener("click", () => this.choose(tab));
        list.addEventListener("keydown", (event) => this.key(event));
    }

    get current() {
        return this.tabs.find((tab) => tab.getAttribute("aria-selected") === "true").id;
    }

    choose(chosen) {
        for (const tab of this.tabs) {
            const is = tab === chosen;
            setAttribute(tab, "aria-selected", is ? "true" : "false");
            setAttribute(tab, "tabindex", is ? undefined : "-1");
            document.getElementById(tab.getAttribute("aria-controls")).hidden = !is;
        }
        this.chosen(chosen.id);
    }

    key(event) {
        const at = this.tabs.indexOf(document.activeElement);
        const count = this.tabs.length;
        const next = { ArrowRight: (at + 1) % count, ArrowLeft: (at + count - 1) % count, Home: 0, End: count - 1 }[event.key];
        if (at < 0 || next === undefined) return;
        event.preventDefault();
        this.tabs[next].focus();
        this.choose(this.tabs[next]);
    }
}
