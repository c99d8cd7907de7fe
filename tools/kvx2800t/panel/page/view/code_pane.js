import { element, setAttribute, setText } from "./dom.js";

const kLanguages = [
    { key: "scpi", name: "SCPI" },
    { key: "c", name: "C" },
    { key: "python", name: "Python" },
];

/** SCPI lines begin with what became of them: sent, received, failed. */
const kDirections = { "<": "received", "!": "failed" };

/** The lines of each click: what went over the link, and the calls of the driver that do the same. */
export class CodePane {
    constructor(pane, clear) {
        this.language = kLanguages[0].key;
        this.shown = [];
        this.choices = kLanguages.map(({ key, name }) =>
            element("button", { type: "button", "aria-pressed": "false", onclick: () => this.choose(key) }, name),
        );
        this.copied = element("span", { class: "copied", role: "status" });
        this.text = element("pre", { class: "code", tabindex: "0", role: "region", "aria-label": "Lines of the clicks" });
        pane.append(
            element(
                "div",
                { class: "pane-head" },
                element("div", { class: "buttons joined", role: "group", "aria-label": "Language" }, ...this.choices),
                element("span", { class: "grow" }),
                this.copied,
                element("button", { type: "button", onclick: () => this.copy() }, "Copy"),
                element("button", { type: "button", onclick: clear }, "Clear"),
            ),
            this.text,
        );
        this.choose(this.language);
    }

    choose(language) {
        this.language = language;
        kLanguages.forEach(({ key }, index) => setAttribute(this.choices[index], "aria-pressed", key === language ? "true" : "false"));
        this.write();
    }

    show({ lines }) {
        if (lines === this.shown) return;
        this.shown = lines;
        this.write();
    }

    write() {
        const atEnd = this.text.scrollHeight - this.text.scrollTop - this.text.clientHeight < 40;
        this.text.replaceChildren(...this.shown.filter((entry) => entry[this.language].length > 0).map((entry) => this.entryOf(entry)));
        if (this.text.childElementCount === 0) this.text.append(element("span", { class: "empty" }, "Each click shows its lines here."));
        if (atEnd) this.text.scrollTop = this.text.scrollHeight;
        setText(this.copied, "");
    }

    entryOf(entry) {
        const lines = entry[this.language].map((line) =>
            element("span", { class: kDirections[line[0]] }, `${line}\n`),
        );
        return element("span", { class: entry.page ? "entry" : "entry other", title: entry.page ? undefined : "Of another page" }, ...lines);
    }

    async copy() {
        const text = this.shown.flatMap((entry) => entry[this.language]).join("\n");
        setText(this.copied, (await copied(`${text}\n`)) ? "Copied" : "Not copied: the browser does not allow it");
    }
}

/** Whether the clipboard has the text; by the older way where the page's address is not one that browsers trust. */
async function copied(text) {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        const area = element("textarea", { class: "unseen", "aria-hidden": "true" });
        area.value = text;
        document.body.append(area);
        const before = document.activeElement;
        area.select();
        const done = document.execCommand("copy");
        area.remove();
        before?.focus();
        return done;
    }
}
