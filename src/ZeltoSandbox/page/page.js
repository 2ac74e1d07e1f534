import { addRequests, forgetRequests } from "/requests.js";
import { element, reconcile } from "/text.js";

const retryTime = 1000;
const quietTime = 150; // ms between two updates; at least as long as one takes, so that a thousand requests are not a thousand updates
const byId = (id) => document.getElementById(id);
const pause = (time) => new Promise((resolve) => setTimeout(resolve, time));

// The modules that show what services hold, by the services' keys in the state. Each has its `title`, perhaps a
// `styleSheet`, whose rules begin with `.of-<key>`, and `show`, which gets a place and the service's state and returns
// how many things exports made there.
const modules = new Map();

let last = 0; // number of the newest request that is shown
let round = 0; // counts the times that the page began anew
let updating = false;
let changed = false;

function showConnection(state, text) {
  const connection = byId("connection");
  if (connection.dataset.state === state) return;
  connection.dataset.state = state;
  connection.textContent = text;
}

async function get(path) {
  const response = await fetch(path, { cache: "no-store" });
  if (!response.ok) throw new Error(`${path}: ${response.status}`);
  return response.json();
}

async function loadModule(key) {
  const module = await import(`/${key}.js`);
  if (module.styleSheet) {
    document.head.append(Object.assign(element("link"), { rel: "stylesheet", href: module.styleSheet }));
  }
  modules.set(key, module);
}

function makeSection({ id, title }) {
  const section = element("section", `of-${id}`);
  const heading = element("h2", "", title);
  heading.id = `${id}-title`;
  section.setAttribute("aria-labelledby", heading.id);
  section.append(heading, element("div"));
  return section;
}

// A section for each service that has received something; returns how many things exports made.
function showServices(keys, state) {
  const made = byId("made");
  reconcile(made, keys.map((key) => ({ id: key, title: modules.get(key).title })), makeSection, () => {});
  const counts = keys.map((key, index) => modules.get(key).show(made.children[index].lastElementChild, state[key]));
  return counts.reduce((sum, count) => sum + count, 0);
}

async function update() {
  const started = round;
  const [state, received] = await Promise.all([get("/control/state"), get(`/control/requests?after=${last}`)]);
  const keys = state.services.filter((each) => each.requests > 0).map((each) => each.name.toLowerCase())
    .filter((key) => key in state);
  await Promise.all(keys.filter((key) => !modules.has(key)).map(loadModule));
  if (started !== round) return;
  byId("nothing-made").hidden = showServices(keys, state) > 0;
  addRequests(received.requests, state);
  last = received.requests.at(-1)?.number ?? last;
  byId("no-requests").hidden = last > 0;
}

// One update covers all changes that arrive during the one before.
async function updateSoon() {
  changed = true;
  if (updating) return;
  updating = true;
  while (changed) {
    changed = false;
    const started = performance.now();
    try {
      await update();
    } catch (problem) {
      // If the sandbox has ended, the event stream notices it.
      changed = true;
      await pause(retryTime);
    }
    await pause(Math.max(quietTime, performance.now() - started));
  }
  updating = false;
}

function startOver() {
  round += 1;
  last = 0;
  forgetRequests();
  updateSoon();
}

function connect() {
  const events = new EventSource("/control/events");
  events.addEventListener("open", () => {
    showConnection("live", "Live");
    startOver();
  });
  events.addEventListener("change", (event) => {
    // Fewer than before: the sandbox was reset.
    if (JSON.parse(event.data).requests < last) startOver();
    else updateSoon();
  });
  events.addEventListener("error", () => {
    events.close();
    showConnection("ended", "The sandbox has ended. This page goes on when it is started again on the same port.");
    setTimeout(connect, retryTime);
  });
}

for (const place of document.getElementsByClassName("origin")) place.textContent = location.origin;
connect();
