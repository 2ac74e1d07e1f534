import { element, foreign, longText, sizeText } from "/text.js";

const shownRequests = 200;
const list = document.getElementById("requests");
const services = document.getElementById("services");
const older = document.getElementById("older");

let refused = new Map(); // by service: how many were refused while the page was open; null for all services
let chosen = null; // the service whose requests are shown; null for all

function timeOf(record) {
  const time = element("time");
  const date = new Date(record.date);
  time.dateTime = record.date;
  time.textContent = date.toLocaleTimeString("en-GB");
  return time;
}

function statusOf(record) {
  const kind = record.fault ? "fault" : record.problem || record.status === 0 || record.status >= 400 ? "refused" : "accepted";
  return element("span", `status ${kind}`, record.status || "none");
}

function cut(text, length) {
  return text.length > length ? text.slice(0, length) + "…" : text;
}

function fillDetails(details, record) {
  const fields = element("dl");
  for (const field of record.fields) fields.append(foreign("dt", "", field.name), foreign("dd", "", field.value));
  const line = longText("p", "line", `${record.method} https://${record.host}${record.target}`);
  const about = `Request ${record.number}, on connection ${record.connection}${record.isWeb ? ", by a browser" : ""}`;
  details.append(element("p", "note", about), line, fields);
  if (record.body) details.append(longText("pre", "", record.body));
  if (record.bodySize) details.append(element("p", "note", `Body of ${sizeText(record.bodySize)}`));
}

function makeRequest(record) {
  const item = element("li");
  const details = element("details", "request");
  const summary = element("summary");
  const [path, query] = record.target.split(/\?(.*)/s);
  const host = record.host + (query ? ` ?${query}` : "");
  summary.append(timeOf(record), element("span", "method", record.method), statusOf(record),
    foreign("span", "target", cut(path, 300)), foreign("span", "host", cut(host, 300)));
  if (record.problem) summary.append(foreign("span", "problem", record.problem));
  if (record.fault) summary.append(foreign("span", "problem", `Fault: ${record.fault}`));
  details.append(summary);
  details.addEventListener("toggle", () => {
    if (details.children.length === 1) fillDetails(details, record);
  });
  item.append(details);
  item.service = record.service;
  item.hidden = chosen !== null && item.service !== chosen;
  return item;
}

function choose(service) {
  chosen = service;
  for (const item of list.children) item.hidden = chosen !== null && item.service !== chosen;
  for (const button of services.children) button.setAttribute("aria-pressed", button.service === chosen);
}

function showService(service, received) {
  let button = Array.from(services.children).find((each) => each.service === service);
  if (!button) {
    button = Object.assign(element("button"), { type: "button", service });
    button.addEventListener("click", () => choose(service));
    button.setAttribute("aria-pressed", service === chosen);
    services.append(button);
  }
  button.replaceChildren(service ?? "All", element("span", "note", received));
  if (refused.has(service)) button.append(element("span", "problem", `${refused.get(service)} refused`));
}

export function forgetRequests() {
  refused = new Map();
  chosen = null;
  list.replaceChildren();
  services.replaceChildren();
  older.hidden = true;
}

// The newest come first. `state` has the counts, with the requests that the sandbox no longer keeps.
export function addRequests(records, state) {
  for (const { service } of records.filter((record) => record.problem)) {
    for (const each of [null, service]) refused.set(each, (refused.get(each) ?? 0) + 1);
  }
  list.prepend(...records.slice(-shownRequests).map(makeRequest).reverse());
  while (list.children.length > shownRequests) list.lastElementChild.remove();
  if (state.requests) showService(null, state.requests);
  for (const { name, requests } of state.services) if (requests) showService(name, requests);
  const hidden = state.requests - list.children.length;
  older.hidden = hidden <= 0;
  older.textContent = `and ${hidden} older`;
}
