// Databases as tables of their pages, and a page as its title and blocks, which are in the JSON of Notion's API.
import { element, foreign, foreignPiece, reconcile, webLink } from "/text.js";

export const title = "Notion";
export const styleSheet = "/notion.css";

const shownPages = 100; // of a database
const emptyDatabases = 5; // that are shown where no database has pages
const styles = ["bold", "italic", "strikethrough", "underline", "code"];
const head = { id: "head" }; // of a table, beside its pages
const listTags = { bulleted_list_item: "ul", numbered_list_item: "ol" };
const blockTags = { paragraph: "p", heading_1: "h4", heading_2: "h5", heading_3: "h6", quote: "blockquote", toggle: "div", to_do: "div" };

function textSpan({ text, annotations }) {
  const span = foreignPiece("span", text.content);
  for (const style of styles) span.classList.toggle(style, annotations[style]);
  if (annotations.color !== "default") span.classList.add("colored", annotations.color);
  if (!text.link) return span;
  const link = webLink(text.link.url);
  if (link.localName === "a") {
    link.className = "";
    link.removeAttribute("dir");
    link.title = text.link.url;
    link.replaceChildren(span);
    return link;
  }
  // An address that leads to no web site is shown beside its text, not hidden behind it.
  const both = element("span");
  link.classList.add("note");
  both.append(span, " (", link, ")");
  return both;
}

function fillText(parent, items) {
  parent.dir = "auto";
  parent.append(...items.map(textSpan));
  return parent;
}

function blockElement({ type, [type]: content }) {
  if (type === "divider") return element("hr");
  const made = element(blockTags[type] ?? "li", `block ${type}`);
  if (content.color !== "default") made.classList.add("colored", content.color);
  if (type === "to_do") made.append(element("span", "check", content.checked ? "☑ " : "☐ "));
  if (type === "toggle") made.append(element("span", "check", "▸ "));
  fillText(made, content.rich_text);
  if (content.children?.length) made.append(blockList("div", "children", content.children));
  return made;
}

// Items of a list that follow each other come into one list.
function blockList(tag, className, blocks) {
  const parent = element(tag, className);
  for (const block of blocks) {
    const listTag = listTags[block.type];
    if (listTag && parent.lastElementChild?.localName !== listTag) parent.append(element(listTag));
    (listTag ? parent.lastElementChild : parent).append(blockElement(block));
  }
  return parent;
}

function titleOf(items) {
  return items.some(({ text }) => text.content.trim()) ? fillText(element("bdi"), items) : element("span", "note", "Untitled");
}

function paperOf({ title: name, blocks }) {
  const paper = element("article", "paper");
  const heading = element("h3");
  heading.append(titleOf(name));
  paper.append(heading, blockList("div", "blocks", blocks));
  if (!blocks.length) paper.append(element("p", "note", "An empty page"));
  return paper;
}

// A page opens below the line that it has in its database's table. What is closed is not made.
function open(body, isOpen) {
  const whole = body.children[1];
  whole.hidden = !isOpen;
  whole.firstElementChild.replaceChildren(...(isOpen ? [paperOf(body.page)] : []));
  body.querySelector("button").setAttribute("aria-expanded", isOpen);
}

function fillPage(body, page) {
  const [nameCell, textCell, dateCell] = body.firstElementChild.children;
  const name = nameCell.firstElementChild;
  const button = name.firstElementChild;
  body.page = page;
  body.classList.toggle("is-newest", Boolean(page.isNewest));
  button.replaceChildren(titleOf(page.title));
  name.replaceChildren(button, ...(page.isNewest ? [element("span", "newest", "newest")] : []));
  textCell.replaceChildren(fillText(element("div"), page.text));
  dateCell.textContent = new Date(page.date).toLocaleString("en-GB", { dateStyle: "medium", timeStyle: "short" });
  open(body, Boolean(page.isNewest || body.isChosen));
}

function choose(body) {
  body.isChosen = body.children[1].hidden;
  open(body, body.isChosen);
}

function makePage() {
  const body = element("tbody");
  const line = element("tr");
  const name = element("div", "name-line");
  const button = element("button", "page-name");
  button.type = "button";
  button.addEventListener("click", () => choose(body));
  line.append(element("td"), element("td"), element("td"));
  name.append(button);
  line.firstElementChild.append(name);
  const whole = element("tr", "page");
  const cell = element("td");
  cell.colSpan = line.children.length;
  whole.append(cell);
  body.append(line, whole);
  return body;
}

function makeDatabase() {
  const details = element("details", "board");
  details.open = true;
  const table = element("table");
  table.append(Object.assign(element("thead"), { key: head.id }));
  details.append(element("summary"), table, element("p", "note"));
  return details;
}

function fillDatabase(details, { title: name, isShared, columns, pages }) {
  const [summary, table, note] = details.children;
  summary.replaceChildren(titleOf(name), element("span", "note", ` ${pages.length}`));
  if (!isShared) summary.append(element("span", "tag", "not shared"));
  const names = element("tr");
  names.append(...columns.map((column) => foreign("th", "", column)), element("th", "", "Created"));
  table.tHead.replaceChildren(names);
  table.hidden = !pages.length;
  const shown = pages.slice(-shownPages).reverse();
  reconcile(table, [head, ...shown], makePage, (child, item) => item.id === head.id || fillPage(child, item));
  const hidden = pages.length - shown.length;
  note.textContent = hidden ? `and ${hidden} older` : pages.length ? "" : "Empty";
}

// Returns the number of pages.
export function show(root, { user, workspace, databases }) {
  const pages = databases.flatMap((database) => database.pages);
  const newest = pages.reduce((found, page) => (!found || page.date >= found.date ? page : found), null);
  if (newest) newest.isNewest = true;
  const used = databases.filter((database) => database.pages.length);
  const shown = used.length ? used : databases.slice(0, emptyDatabases);
  const hidden = databases.length - shown.length;
  if (!root.children.length) root.append(element("p", "note"), element("div"), element("p", "note"));
  const [about, places, rest] = root.children;
  about.replaceChildren(foreign("span", "", `${user.name}, ${user.email}, in ${workspace}`));
  reconcile(places, shown, makeDatabase, fillDatabase);
  rest.textContent = hidden ? `and ${hidden} ${used.length ? "databases without pages" : "more databases"}` : "";
  return pages.length;
}
