import { fileItem } from "/boards.js";
import { element, foreign, reconcile } from "/text.js";

export const title = "OneNote";
export const styleSheet = "/onenote.css";

const shownPages = 20; // of a section, the latest

// The page as it would look. The frame has neither scripts nor anything from elsewhere; it is loaded once it is seen.
function frameOf({ url, title }) {
  const frame = element("iframe", "sheet");
  frame.setAttribute("sandbox", "");
  frame.title = title;
  frame.loading = "lazy";
  if (/^\/files\/\d+$/.test(url)) frame.src = url;
  return frame;
}

function fillPage(item, page) {
  item.replaceChildren(foreign("h4", "", page.title || "Untitled page"), frameOf(page));
  if (!page.files.length) return;
  const files = element("ul", "attachments");
  files.append(...page.files.map(fileItem));
  item.append(files);
}

function makeSection() {
  const section = element("section", "notes");
  section.append(element("h3"), element("ol", "pages"), element("p", "note"));
  return section;
}

function fillSection(section, { name, full, pages }) {
  const [heading, list, note] = section.children;
  heading.replaceChildren(foreign("bdi", "", name), element("span", "note", pages.length));
  if (full) heading.append(element("span", "tag", "full"));
  const shown = pages.slice(-shownPages).reverse();
  reconcile(list, shown, () => element("li", "card"), fillPage);
  note.textContent = pages.length > shown.length ? `and ${pages.length - shown.length} older` : pages.length ? "" : "Empty";
}

function makeNotebook() {
  const notebook = element("details", "board");
  notebook.open = true;
  notebook.append(element("summary"), element("div"), element("p", "note"));
  return notebook;
}

function fillNotebook(notebook, { name, sections }) {
  const [summary, place, note] = notebook.children;
  summary.replaceChildren(foreign("bdi", "", name));
  reconcile(place, sections, makeSection, fillSection);
  note.textContent = sections.length ? "" : "No sections";
}

export function show(root, { notebooks }) {
  reconcile(root, notebooks, makeNotebook, fillNotebook);
  return notebooks.flatMap(({ sections }) => sections.flatMap(({ pages }) => pages)).length;
}
