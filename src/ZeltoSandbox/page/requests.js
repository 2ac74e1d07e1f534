import { element, foreign, longText, sizeText } from "/text.js";

const shownRequests = 200;
const referenceDate = Date.UTC(2001, 0, 1);
const list = document.getElementById("requests");
const services = document.getElementById("services");
const older = document.getElementById("older");

let counts = new Map(); // service: {received, refused}
let chosen = null; // the service whose requests are shown

const serviceOf = (record) => record.service || "other hosts";

function timeOf(record) {
  const time = element("time");
  const date = new Date(referenceDate + record.date * 1000);
  time.dateTime = date.toISOString();
  time.textContent = date.toLocaleTimeString("en-GB");
  return time;
}

function statusOf(record) {
  const kind = record.fault ? "fault" : record.status === 0 || record.status >= 400 ? "refused" : "accepted";
  return element("span", `status ${kind}`, record.status || "no answer");
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
  const target = foreign("span", "target", cut(path, 200));
  if (query) target.append(foreign("span", "note", cut("?" + query, 200)));
  summary.append(timeOf(record), element("span", "method", record.method), statusOf(record), target,
    foreign("span", "host", record.host));
  if (record.problem) summary.append(foreign("span", "problem", record.problem));
  if (record.fault) summary.append(foreign("span", "problem", `Fault: ${record.fault}`));
  details.append(summary);
  details.addEventListener("toggle", () => {
    if (details.children.length === 1) fillDetails(details, record);
  });
  item.append(details);
  item.service = serviceOf(record);
  item.hidden = chosen !== null && item.service !== chosen;
  return item;
}

function choose(service) {
  chosen = service;
  for (const item of list.children) item.hidden = chosen !== null && item.service !== chosen;
  for (const button of services.children) button.setAttribute("aria-pressed", button.service === chosen);
}

function showService(service, count) {
  let button = Array.from(services.children).find((each) => each.service === service);
  if (!button) {
    button = Object.assign(element("button"), { type: "button", service });
    button.addEventListener("click", () => choose(service));
    button.setAttribute("aria-pressed", service === chosen);
    services.append(button);
  }
  button.replaceChildren(service ?? "All", element("span", "note", count.received));
  if (count.refused) button.append(element("span", "problem", `${count.refused} refused`));
}

export function forgetRequests() {
  counts = new Map();
  chosen = null;
  list.replaceChildren();
  services.replaceChildren();
  older.hidden = true;
}

// The newest stand first.
export function addRequests(records) {
  for (const record of records) {
    for (const service of [null, serviceOf(record)]) {
      const count = counts.get(service) ?? { received: 0, refused: 0 };
      count.received += 1;
      count.refused += record.problem ? 1 : 0;
      counts.set(service, count);
    }
  }
  counts.forEach((count, service) => showService(service, count));
  list.prepend(...records.slice(-shownRequests).map(makeRequest).reverse());
  while (list.children.length > shownRequests) list.lastElementChild.remove();
  const hidden = (counts.get(null)?.received ?? 0) - list.children.length;
  older.hidden = hidden === 0;
  older.textContent = `and ${hidden} older`;
}
