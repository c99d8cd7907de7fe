/** The soft front panel: the server's messages make the state, the state makes what is seen, clicks become requests. */
import { Latest } from "./model/latest.js";
import { initialState, isConnected, kStaleAfter, linkTextOf, reduce } from "./model/state.js";
import { Server } from "./server.js";
import { ChannelCard } from "./view/channel_card.js";
import { CodePane } from "./view/code_pane.js";
import { announce, ask, byId, setAttribute, setText } from "./view/dom.js";
import { ErrorsPane } from "./view/errors_pane.js";
import { ListPane } from "./view/list_pane.js";
import { Plot } from "./view/plot.js";
import { SourceModes } from "./view/source_modes.js";
import { Tabs } from "./view/tabs.js";
import { Theme } from "./view/theme.js";

const kNames = ["CH1", "CH2", "CH3", "CH4", "CH5", "CH6"];

/** After these it is known what the instrument is set to, or that it is not known. */
const kEndsWaiting = { state: true, closed: true, stale: true };

let state = initialState();
let refusal = "";
let watch;
const untilReading = [];

/** Sends a request and shows why it was refused, if it was. Fields show their own refusals. */
async function request(message) {
    const answer = await server.send(message);
    refuse(answer.ok ? "" : answer.text);
    return answer;
}

/** Sends a setting; it is under way until a reading shows what has become of it. */
async function set(message) {
    const answer = await server.send(message);
    if (answer.ok) await new Promise((resolve) => untilReading.push(resolve));
    return answer;
}

function refuse(text) {
    refusal = text;
    showBanner();
}

const latest = new Latest(set);
const cards = kNames.map((name) => new ChannelCard(name, request, latest));
byId("channels").append(...cards.map((card) => card.node));
const plot = new Plot(kNames);
const modes = new SourceModes(document.querySelector(".modes"), request);
const code = new CodePane(byId("pane-code"), () => take({ type: "linesCleared" }));
const errors = new ErrorsPane(byId("pane-errors"), byId("error-count"), () => request({ do: "clearErrors" }));
const list = new ListPane(byId("pane-list"), kNames, request);
const tabs = new Tabs(document.querySelector('[role="tablist"]'), (id) => list.setOpen(id === "tab-list"));
new Theme(byId("theme"), () => plot.rebuild());
const server = new Server(take);

function take(event) {
    state = reduce(state, event);
    if (event.type === "state") {
        plot.take(state, event);
        watchReadings();
    }
    if (event.type === "closed") clearTimeout(watch);
    if (event.type in kEndsWaiting) untilReading.splice(0).forEach((resolve) => resolve());
    show();
}

/** Readings that stop coming are no readings any more. */
function watchReadings() {
    clearTimeout(watch);
    watch = setTimeout(() => take({ type: "stale" }), kStaleAfter);
}

function show() {
    setText(byId("identity"), identityOf(state));
    setText(byId("link-text"), linkTextOf(state));
    setAttribute(byId("link"), "data-state", isConnected(state) ? (state.hello?.simulated ? "simulated" : "connected") : state.server === "open" ? state.link.state : state.server);
    byId("reset").disabled = !isConnected(state);
    for (const card of cards) card.show(state.channels?.find((channel) => channel.name === card.name), state.sourceMode);
    modes.show(state);
    code.show(state);
    errors.show(state);
    list.show(state);
    showBanner();
}

function identityOf({ identity, hello }) {
    const resource = hello ? (hello.simulated ? "simulated" : hello.resource) : "";
    if (!identity) return resource || "–";
    const texts = [identity.manufacturer, identity.model, identity.serial && `serial ${identity.serial}`, identity.firmware, resource];
    return texts.filter(Boolean).join(" · ");
}

/** A lost link is said in words, with its reason; so is what was refused. */
function showBanner() {
    const lost = state.server === "lost" || (state.server === "open" && state.link.state === "lost");
    const text = lost ? [linkTextOf(state), state.link.text].filter(Boolean).join(": ") : refusal;
    setText(byId("banner-text"), text);
    byId("banner").hidden = text === "";
    byId("banner").dataset.kind = lost ? "lost" : "refused";
    setText(byId("reconnect"), lost ? "Reconnect now" : "Dismiss");
}

async function allOff() {
    const answer = await request({ do: "allOff" });
    announce(answer.ok ? "All outputs are off." : `All outputs off failed. ${answer.text}`);
}

byId("all-off").addEventListener("click", allOff);
byId("reset").addEventListener("click", async () => {
    if (await ask("Reset the instrument? All outputs go off, and all settings to their defaults.", "Reset")) request({ do: "reset" });
});
byId("reconnect").addEventListener("click", () => {
    if (byId("banner").dataset.kind === "refused") refuse("");
    else if (state.server === "open") request({ do: "reconnect" });
});
// Before any other listener, from anywhere: Escape is the emergency key, whatever else it does.
window.addEventListener("keydown", (event) => event.key === "Escape" && !event.repeat && allOff(), { capture: true });
show();
