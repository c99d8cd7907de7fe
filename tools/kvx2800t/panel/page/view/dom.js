/** Small helpers over the document. */

const kSvg = "http://www.w3.org/2000/svg";

function filled(node, attributes, children) {
    for (const [name, value] of Object.entries(attributes)) {
        if (name.startsWith("on")) node.addEventListener(name.slice(2), value);
        else if (value === true) node.setAttribute(name, "");
        else if (value !== false && value !== undefined && value !== null) node.setAttribute(name, value);
    }
    node.append(...children);
    return node;
}

/** An element; attributes whose name begins with "on" are listeners. */
export function element(name, attributes = {}, ...children) {
    return filled(document.createElement(name), attributes, children);
}

/** The same in an SVG drawing. */
export function drawn(name, attributes = {}, ...children) {
    return filled(document.createElementNS(kSvg, name), attributes, children);
}

export const byId = (id) => document.getElementById(id);

/** Sets a text; ten times a second nothing is touched that has not changed. */
export function setText(node, text) {
    if (node.textContent !== text) node.textContent = text;
}

/** Sets an attribute; null or undefined removes it. */
export function setAttribute(node, name, value) {
    if (value === null || value === undefined) node.removeAttribute(name);
    else if (node.getAttribute(name) !== String(value)) node.setAttribute(name, value);
}

export function setDisabled(node, disabled) {
    if (node.disabled !== disabled) node.disabled = disabled;
}

/** Tells users of screen readers at once. */
export function announce(text) {
    const announcer = byId("announcer");
    announcer.textContent = "";
    requestAnimationFrame(() => {
        announcer.textContent = text;
    });
}

/** Asks; whether the answer was yes. */
export function ask(question, yes) {
    const dialog = byId("question");
    byId("question-text").textContent = question;
    byId("question-yes").textContent = yes;
    dialog.returnValue = "no";
    dialog.showModal();
    return new Promise((resolve) => {
        dialog.addEventListener("close", () => resolve(dialog.returnValue === "yes"), { once: true });
    });
}

/** Gives the user a file. */
export function download(name, blob) {
    const address = URL.createObjectURL(blob);
    element("a", { href: address, download: name }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
}

/** What the browser keeps for the next visit, if it keeps anything. */
export function remembered(key, otherwise) {
    try {
        return JSON.parse(localStorage.getItem(`kvx2800t.${key}`)) ?? otherwise;
    } catch {
        return otherwise;
    }
}

export function remember(key, value) {
    try {
        localStorage.setItem(`kvx2800t.${key}`, JSON.stringify(value));
    } catch {
        // A browser that keeps nothing shows the panel as it is at first.
    }
}
