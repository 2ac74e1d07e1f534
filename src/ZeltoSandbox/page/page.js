import { addRequests, forgetRequests } from "/requests.js";
import { element } from "/text.js";
import { showTrello } from "/trello.js";

// What a service holds is shown by a function, which gets a place and the service's state and gives the number of
// things that exports made there.
const services = [{ key: "trello", title: "Trello", show: showTrello }];

const retryTime = 1000;
const quietTime = 150; // at least, and as long as a look took, so that a thousand requests do not make a thousand looks
const byId = (id) => document.getElementById(id);
const pause = (time) => new Promise((resolve) => setTimeout(resolve, time));

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

async function look() {
  const begun = round;
  const [state, received] = await Promise.all([get("/control/state"), get(`/control/requests?after=${last}`)]);
  if (begun !== round) return;
  const made = services.map((each) => each.show(each.place, state[each.key] ?? {}));
  byId("nothing-made").hidden = made.some((count) => count > 0);
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

function makeSection(service) {
  const section = element("section");
  const title = element("h2", "", service.title);
  title.id = `${service.key}-title`;
  section.setAttribute("aria-labelledby", title.id);
  service.place = element("div");
  section.append(title, service.place);
  return section;
}

byId("held").append(...services.map(makeSection));
for (const place of document.getElementsByClassName("origin")) place.textContent = location.origin;
connect();
