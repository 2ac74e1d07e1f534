// A cloud drive as a browser of files: the way to the folder that is open, and a table of what it holds. A file opens
// in a tab of its own, and so does each earlier revision.
import { element, foreign, reconcile, sizeText } from "/text.js";

const shownEntries = 200; // of a folder
const symbols = [["image/", "🖼️"], ["application/pdf", "📕"], ["text/", "📄"]];
const names = new Intl.Collator("en", { numeric: true });

const isFolder = (entry) => entry.count !== undefined;
const dateText = (date, timeStyle = "short") => new Date(date).toLocaleString("en-GB", { dateStyle: "medium", timeStyle });
const counted = (count, one, several) => (count === 1 ? `1 ${one}` : `${count.toLocaleString("en")} ${several}`);

function symbolOf(entry) {
  const found = symbols.find(([type]) => entry.mediaType?.startsWith(type));
  const symbol = element("span", "symbol", isFolder(entry) ? "📁" : found ? found[1] : "📦");
  symbol.ariaHidden = "true";
  return symbol;
}

function fileLink(url, name) {
  if (!/^\/files\/\d+$/.test(url)) return foreign("bdi", "", name);
  const link = foreign("a", "", name);
  link.href = url;
  link.target = "_blank";
  link.rel = "noopener noreferrer";
  return link;
}

function nameOf(place, entry) {
  if (!isFolder(entry)) return fileLink(entry.revisions[0]?.url, entry.name);
  const button = foreign("button", "name", entry.name);
  button.type = "button";
  button.addEventListener("click", () => open(place, entry.id));
  return button;
}

function revisionItem({ id, date, size, url }) {
  const item = element("li");
  item.append(fileLink(url, dateText(date, "medium")), element("span", "note", ` ${sizeText(size)}, revision `), foreign("code", "", id));
  return item;
}

function showRevisions(body, isOpen) {
  body.children[1].hidden = !isOpen;
  body.querySelector(".revisions-of")?.setAttribute("aria-expanded", isOpen);
}

// How many revisions there are, where there are several: a button that shows them.
function revisionsButton(body) {
  const button = element("button", "revisions-of", `${body.entry.revisions.length} revisions`);
  button.type = "button";
  button.addEventListener("click", () => {
    showRevisions(body, body.children[1].hidden);
    button.focus();
  });
  return button;
}

function fillEntry(place, body, entry) {
  const [nameCell, sizeCell, dateCell] = body.firstElementChild.children;
  const wasOpen = !body.children[1].hidden;
  body.entry = entry;
  body.className = entry.isNewest ? "is-newest" : entry.trashed ? "is-trashed" : "";
  nameCell.replaceChildren(symbolOf(entry), nameOf(place, entry));
  if (entry.isNewest) nameCell.prepend(element("span", "newest", "newest"));
  if (entry.trashed) nameCell.append(element("span", "tag", "in the trash"));
  const revisions = entry.revisions ?? [];
  if (isFolder(entry)) sizeCell.textContent = counted(entry.count, "item", "items");
  else if (revisions.length) sizeCell.textContent = sizeText(revisions[0].size);
  else sizeCell.replaceChildren(foreign("span", "", entry.mediaType));
  dateCell.textContent = dateText(entry.date);
  if (revisions.length > 1) dateCell.append(revisionsButton(body));
  body.querySelector("ol").replaceChildren(...(revisions.length > 1 ? revisions.map(revisionItem) : []));
  showRevisions(body, wasOpen && revisions.length > 1);
}

function makeEntry() {
  const body = element("tbody");
  const line = element("tr");
  line.append(element("td"), element("td", "size"), element("td"));
  const whole = element("tr", "revisions");
  whole.hidden = true;
  const cell = element("td");
  cell.colSpan = line.children.length;
  cell.append(element("ol"));
  whole.append(cell);
  body.append(line, whole);
  return body;
}

// The folder and those above it, the root first.
function wayTo(state, id) {
  const way = [];
  const byId = new Map(state.entries.map((entry) => [entry.id, entry]));
  for (let folder = byId.get(id); folder; folder = byId.get(folder.parent)) way.unshift(folder);
  return [{ id: state.root, name: "All files", count: state.rootCount }, ...way];
}

function crumb(place, folder, isOpen) {
  const item = element("li");
  if (isOpen) {
    const name = foreign("bdi", "", folder.name);
    name.ariaCurrent = "page";
    name.tabIndex = -1;
    item.append(name);
    return item;
  }
  const button = foreign("button", "name", folder.name);
  button.type = "button";
  button.addEventListener("click", () => open(place, folder.id));
  item.append(button);
  return item;
}

function byKindAndName(one, other) {
  return Number(isFolder(other)) - Number(isFolder(one)) || names.compare(one.name, other.name);
}

function fill(place) {
  const { state } = place;
  const [about, way, table, note] = place.children;
  const folders = wayTo(state, place.folder);
  const folder = folders.at(-1);
  about.replaceChildren(foreign("span", "", `${state.user.name}, ${state.user.email}`));
  way.replaceChildren(...folders.map((each) => crumb(place, each, each === folder)));
  const entries = state.entries.filter((entry) => entry.parent === folder.id)
    .map((entry) => (entry.id === state.newest ? { ...entry, isNewest: true } : entry)).sort(byKindAndName);
  const newest = entries.findIndex((entry) => entry.isNewest);
  if (newest >= shownEntries) entries.unshift(...entries.splice(newest, 1));
  const shown = entries.slice(0, shownEntries);
  reconcile(table, shown, makeEntry, (body, entry) => fillEntry(place, body, entry));
  table.hidden = !shown.length;
  note.textContent = folder.count > shown.length ? `and ${(folder.count - shown.length).toLocaleString("en")} more` : shown.length ? "" : "This folder is empty";
}

function open(place, id) {
  place.folder = id;
  fill(place);
  // What had the focus is gone.
  place.querySelector("[aria-current]").focus();
}

// What an export brings opens the folder that it came to. Returns the number of uploads.
export function showDrive(place, state) {
  if (!place.children.length) {
    const way = element("ol", "crumbs");
    way.ariaLabel = "Folders on the way";
    place.append(element("p", "note"), way, element("table"), element("p", "note"));
  }
  const newest = state.entries.find((entry) => entry.id === state.newest);
  if (newest && place.uploads !== state.uploads) place.folder = newest.parent;
  place.uploads = state.uploads;
  place.state = state;
  fill(place);
  return state.uploads;
}
