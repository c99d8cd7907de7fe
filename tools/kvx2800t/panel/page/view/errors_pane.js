import { announce, element, setText } from "./dom.js";

/** The instrument's text without the quotes that it has on the way. */
const plain = (text) => text.replace(/^"(.*)"$/, "$1");

/** What the instrument's error queue has held. */
export class ErrorsPane {
    constructor(pane, count, clear) {
        this.count = count;
        this.shown = [];
        this.rows = element("tbody");
        this.table = element(
            "table",
            { class: "errors" },
            element("thead", {}, element("tr", {}, element("th", { scope: "col" }, "Code"), element("th", { scope: "col" }, "Text"))),
            this.rows,
        );
        this.none = element("p", { class: "empty" }, "The instrument has reported no errors.");
        this.clear = element("button", { type: "button", onclick: clear }, "Clear");
        pane.append(
            element("div", { class: "pane-head" }, element("p", { class: "grow" }, "The instrument’s error queue, oldest first."), this.clear),
            element("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Error queue" }, this.table, this.none),
        );
        this.show({ errors: [] });
    }

    show({ errors }) {
        if (errors === this.shown) return;
        if (errors.length > this.shown.length) {
            const { code, text } = errors.at(-1);
            announce(`Instrument error ${code}: ${plain(text)}`);
        }
        this.shown = errors;
        this.rows.replaceChildren(
            ...errors.map(({ code, text }) => element("tr", {}, element("td", { class: "number" }, String(code)), element("td", {}, plain(text)))),
        );
        this.table.hidden = errors.length === 0;
        this.none.hidden = errors.length > 0;
        this.clear.disabled = errors.length === 0;
        setText(this.count, String(errors.length));
        this.count.dataset.any = errors.length > 0 ? "yes" : "no";
    }
}
