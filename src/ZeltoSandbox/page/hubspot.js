// A CRM: the timeline of what was logged, the latest first, and the contacts with their stages. Properties have the names
// of HubSpot's API.
import { element, foreign, longText, reconcile, webLink } from "/text.js";

export const title = "HubSpot";
export const styleSheet = "/hubspot.css";

const shownActivities = 30;
const shownContacts = 25;
const shownPeople = 12; // of a line of a header, or of an activity's associations
const columns = ["Contact", "Lifecycle stage", "Lead status", "Logged"];
const kinds = { email: ["✉️", "E-mail"], note: ["📝", "Note"], meeting: ["📅", "Meeting"] };
const directions = { EMAIL: "Sent from the CRM", INCOMING_EMAIL: "Incoming", FORWARDED_EMAIL: "Forwarded to the CRM" };

const dateText = (date) => new Date(date).toLocaleString("en-GB", { dateStyle: "medium", timeStyle: "short" });
// A property is ISO 8601 or a number of milliseconds.
const propertyDate = (text) => dateText(/^-?\d+$/.test(text) ? Number(text) : text);
const statusText = (status) => status.charAt(0) + status.slice(1).toLowerCase().replaceAll("_", " ");

function contactName({ firstName, lastName, email }) {
  return `${firstName} ${lastName}`.trim() || email || "No name";
}

function personText({ firstname, lastname, email }) {
  const name = `${firstname ?? ""} ${lastname ?? ""}`.trim();
  return name ? `${name} <${email}>` : email;
}

// The beginning of a list of texts, each in an element of its own.
function appendList(parent, texts, className) {
  parent.append(...texts.slice(0, shownPeople).map((text) => foreign("span", className, text)));
  const hidden = texts.length - shownPeople;
  if (hidden > 0) parent.append(element("span", "note", `and ${hidden.toLocaleString("en")} more`));
}

function appendFact(facts, name, content) {
  const value = element("dd");
  value.append(content);
  facts.append(element("dt", "", name), value);
}

function appendPeople(facts, name, people = []) {
  if (!people?.length) return;
  const list = element("span", "people");
  appendList(list, people.map(personText), "person");
  appendFact(facts, name, list);
}

function factsOf({ type, properties, headers }) {
  const facts = element("dl", "facts");
  if (type === "email") {
    if (headers.from) appendPeople(facts, "From", [headers.from]);
    appendPeople(facts, "To", headers.to);
    appendPeople(facts, "Cc", headers.cc);
    appendPeople(facts, "Bcc", headers.bcc);
    const direction = directions[properties.hs_email_direction];
    if (direction) appendFact(facts, "Direction", direction);
  }
  if (type === "meeting") {
    const { hs_meeting_start_time: start, hs_meeting_end_time: end, hs_meeting_external_url: url } = properties;
    if (start) appendFact(facts, "Start", propertyDate(start));
    if (end) appendFact(facts, "End", propertyDate(end));
    if (url) appendFact(facts, "Link", webLink(url));
  }
  return facts;
}

// The HTML as it would look. The frame has neither scripts nor anything from elsewhere; it is loaded once it is seen.
function frameOf(url, name) {
  const frame = element("iframe", "sheet");
  frame.setAttribute("sandbox", "");
  frame.title = name;
  frame.loading = "lazy";
  frame.src = url;
  return frame;
}

function textOf(text) {
  return longText("div", "description", text, { form: "links" });
}

function closedText(name, text) {
  const details = element("details", "closed");
  details.append(element("summary", "note", name), textOf(text));
  return details;
}

function bodyOf({ type, properties, html }, name) {
  if (type === "note") return properties.hs_note_body ? [textOf(properties.hs_note_body)] : [];
  if (type === "meeting") {
    const { hs_meeting_body: body, hs_internal_meeting_notes: notes } = properties;
    return [...(body ? [textOf(body)] : []), ...(notes ? [element("h5", "", "Internal notes"), textOf(notes)] : [])];
  }
  const text = properties.hs_email_text;
  if (!/^\/files\/\d+$/.test(html)) return text ? [textOf(text)] : [];
  return [frameOf(html, name), ...(text ? [closedText("Plain text", text)] : [])];
}

function fillActivity(item, activity) {
  const { type, properties, contacts } = activity;
  const [symbol, kind] = kinds[type];
  const name = properties.hs_email_subject ?? properties.hs_meeting_title ?? "";
  const heading = element("header");
  const mark = element("span", "symbol", symbol);
  mark.ariaHidden = "true";
  const date = element("time", "", dateText(activity.timestamp));
  date.dateTime = activity.timestamp;
  heading.append(mark, element("span", "kind", kind), ...(activity.isNewest ? [element("span", "newest", "newest")] : []), date);
  item.classList.toggle("is-newest", Boolean(activity.isNewest));
  const associations = element("p", "associations");
  associations.append(element("span", "note", contacts.length ? "Associated with" : "Associated with nobody"));
  appendList(associations, contacts, "contact");
  const title = name ? [longText("h4", "", name, { limit: 200 })] : type === "note" ? [] : [element("h4", "note", "No subject")];
  item.replaceChildren(heading, ...title, factsOf(activity), ...bodyOf(activity, name || kind), associations);
}

function valueCell(name, value) {
  const cell = value ? foreign("td", "", value) : element("td", "note", "–");
  cell.dataset.name = name;
  return cell;
}

function fillContact(row, contact) {
  const name = element("td");
  name.append(foreign("bdi", "name", contactName(contact)));
  if (!contact.isDemo) name.append(" ", element("span", "tag", "new"));
  if (contact.email && contact.email !== contactName(contact)) name.append(foreign("div", "note", contact.email));
  row.replaceChildren(name, ...[contact.stage, statusText(contact.status), String(contact.count)].map(
    (value, index) => valueCell(columns[index + 1], value)));
}

function makeTable() {
  const table = element("table");
  const names = element("tr");
  names.append(...columns.map((name) => element("th", "", name)));
  const head = element("thead");
  head.append(names);
  table.append(head, element("tbody"));
  return table;
}

// New ones and those of the timeline come first.
function inOrder(contacts) {
  const rank = ({ isDemo, count }) => (isDemo ? (count ? 1 : 2) : 0);
  return contacts.toSorted((left, right) => rank(left) - rank(right) || (left.isDemo ? 0 : right.date.localeCompare(left.date)));
}

function showContacts(place, contacts, otherCount) {
  const [, table, note] = place.children;
  const shown = inOrder(contacts).slice(0, shownContacts);
  reconcile(table.tBodies[0], shown, () => element("tr"), fillContact);
  const hidden = contacts.length - shown.length + otherCount;
  note.textContent = hidden ? `and ${hidden.toLocaleString("en")} more contacts` : "";
}

function makePlaces(root) {
  const contacts = element("section", "contacts");
  contacts.append(element("h3", "", "Contacts"), makeTable(), element("p", "note"));
  root.append(element("p", "note"), element("ol", "timeline"), element("p", "note"), contacts);
}

function counted(contacts, activities) {
  const counts = new Map();
  for (const id of activities.flatMap((activity) => activity.contacts)) counts.set(id, (counts.get(id) ?? 0) + 1);
  return contacts.map((contact) => ({ ...contact, count: counts.get(contact.id) ?? 0 }));
}

// Returns the number of activities and of new contacts.
export function show(root, { user, hub, contacts, otherContacts, activities }) {
  if (!root.children.length) makePlaces(root);
  const [about, timeline, older, place] = root.children;
  about.replaceChildren(foreign("span", "", `${user.name}, ${user.email}, ${hub.domain} (hub ${hub.id})`));
  const names = new Map(contacts.map((contact) => [contact.id, contactName(contact)]));
  const shown = activities.slice(-shownActivities).reverse().map((activity, index) => (
    { ...activity, isNewest: index === 0, contacts: activity.contacts.map((id) => names.get(id) ?? id) }));
  reconcile(timeline, shown, () => element("li", "card"), fillActivity);
  const hidden = activities.length - shown.length;
  older.textContent = hidden ? `and ${hidden.toLocaleString("en")} older` : "";
  showContacts(place, counted(contacts, activities), otherContacts);
  return activities.length + contacts.filter((contact) => !contact.isDemo).length;
}
