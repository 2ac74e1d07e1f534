import { addRequests, forgetRequests } from "/requests.js";
import { element, reconcile } from "/text.js";

const retryTime = 1000;
const quietTime = 150; // at least, and as long as a look took, so that a thousand requests do not make a thousand looks
const byId = (id) => document.getElementById(id);
const pause = (time) => new Promise((resolve) => setTimeout(resolve, time));

// The modules that show what services hold, by the services' keys in the state. Each has its `title`, perhaps a
// `styleSheet`, whose rules begin with `.of-<key>`, and `show`, which gets a place and the service's state and returns
// how many things exports made there.
const modules = new Map();

let last = 0; // number of the newest request that is shown
let round = 0; // counts the starts
let looking = false;
let changed = false;

function tell(state, text) {
  const connection = byId("connection");
  if (connection.dataset.state === state) return;
  connection.dataset.state = state;
  connection.textContent = text;
}

async function get(path) {
  const answer = await fetch(path, { cache: "no-store" });
  if (!answer.ok) throw new Error(`${path}: ${answer.status}`);
  return answer.json();
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

async function look() {
  const begun = round;
  const [state, received] = await Promise.all([get("/control/state"), get(`/control/requests?after=${last}`)]);
  const keys = state.services.filter((each) => each.requests > 0).map((each) => each.name.toLowerCase())
    .filter((key) => key in state);
  await Promise.all(keys.filter((key) => !modules.has(key)).map(loadModule));
  if (begun !== round) return;
  byId("nothing-made").hidden = showServices(keys, state) > 0;
  addRequests(received.requests, state);
  last = received.requests.at(-1)?.number ?? last;
  byId("no-requests").hidden = last > 0;
}

// Looks once for any number of changes that come in while it does.
async function lookSoon() {
  changed = true;
  if (looking) return;
  looking = true;
  while (changed) {
    changed = false;
    const begun = performance.now();
    try {
      await look();
    } catch (problem) {
      // If the sandbox is gone, the event stream tells so.
      changed = true;
      await pause(retryTime);
    }
    await pause(Math.max(quietTime, performance.now() - begun));
  }
  looking = false;
}

function startOver() {
  round += 1;
  last = 0;
  forgetRequests();
  lookSoon();
}

function connect() {
  const events = new EventSource("/control/events");
  events.addEventListener("open", () => {
    tell("live", "Live");
    startOver();
  });
  events.addEventListener("change", (event) => {
    // Fewer than before: it was reset.
    if (JSON.parse(event.data).requests < last) startOver();
    else lookSoon();
  });
  events.addEventListener("error", () => {
    events.close();
    tell("ended", "The sandbox has ended. This page goes on when it is started again on the same port.");
    setTimeout(connect, retryTime);
  });
}

for (const place of document.getElementsByClassName("origin")) place.textContent = location.origin;
connect();
