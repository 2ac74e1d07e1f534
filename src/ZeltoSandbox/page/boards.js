// What most services hold: groups (a workspace, an account) of lists of cards, each with what an export made of it.
// A service's module brings its state into this form:
//   group: { id, name, tags, isClosed, lists, note }
//   list: { id, name, tags, cards }
//   card: { id, name, nameForm, date, facts, text, form, files, comments }, a comment: { text, files }
//   file: { name, mediaType, size, url }, or a link: { name, url }
// `date`, in the form of the control API, orders cards; forms are those of longText(), of the name "plain" and of all else
// "links" where they are left out; lists of texts and of records may be left out.
import { makeRow, showBeyond } from "/columns.js";
import { element, foreign, longText, reconcile, sizeText, webLink } from "/text.js";

const shownCards = 100; // of a list

export function fileItem(file) {
  const item = element("li");
  if (/^\/files\/[\w-]+$/.test(file.url)) {
    const link = foreign("a", "", file.name);
    link.href = file.url;
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    item.append(link, foreign("span", "note", `${file.mediaType}, ${sizeText(file.size)}`));
  } else {
    item.append(foreign("span", "", file.name), webLink(file.url));
  }
  return item;
}

function appendFiles(parent, files = []) {
  if (!files.length) return;
  const list = element("ul", "attachments");
  list.append(...files.map(fileItem));
  parent.append(list);
}

function commentItem(comment, form) {
  const item = element("li");
  if (comment.text) item.append(longText("div", "description", comment.text, { form }));
  appendFiles(item, comment.files);
  return item;
}

function fillCard(item, card) {
  const form = card.form ?? "links";
  item.replaceChildren(longText("h4", "", card.name, { limit: 200, form: card.nameForm }));
  for (const fact of card.facts ?? []) item.append(longText("p", "note", fact, { limit: 200 }));
  if (card.text) item.append(longText("div", "description", card.text, { form }));
  appendFiles(item, card.files);
  if (!card.comments?.length) return;
  const comments = element("ol", "comments");
  comments.append(...card.comments.map((comment) => commentItem(comment, form)));
  item.append(comments);
}

function appendTags(parent, tags = []) {
  for (const tag of tags) parent.append(foreign("span", "tag", tag));
}

function makeList() {
  const section = element("section", "list");
  section.append(element("h3"), element("ol", "cards"), element("p", "note"));
  return section;
}

// The latest of a list's cards, in the list's order.
function latest(cards) {
  if (cards.length <= shownCards) return cards;
  const dates = cards.map((card) => card.date).sort();
  return cards.filter((card) => card.date >= dates[cards.length - shownCards]).slice(0, shownCards);
}

function fillList(section, list) {
  const [title, cards, note] = section.children;
  title.replaceChildren(foreign("bdi", "", list.name), element("span", "note", list.cards.length));
  appendTags(title, list.tags);
  const shown = latest(list.cards);
  reconcile(cards, shown, () => element("li", "card"), fillCard);
  const hidden = list.cards.length - shown.length;
  note.textContent = hidden ? `and ${hidden} older` : list.cards.length ? "" : "Empty";
}

function makeGroup(group) {
  const details = element("details", "board");
  details.open = !group.isClosed;
  details.append(element("summary"), makeRow("lists"), element("p", "note"));
  return details;
}

function fillGroup(details, group) {
  const [summary, row, note] = details.children;
  summary.replaceChildren(foreign("bdi", "", group.name));
  appendTags(summary, group.tags);
  reconcile(row.firstElementChild, group.lists, makeList, fillList);
  showBeyond(row);
  note.textContent = group.note ?? "";
}

// Not part of a card's own content, which stays as it is when another one becomes the newest.
function markNewest(root, id) {
  const mark = root.querySelector(".newest") ?? element("span", "newest", "newest");
  for (const item of root.querySelectorAll(".card")) {
    item.classList.toggle("is-newest", item.key === id);
    if (item.key !== id || item.contains(mark)) continue;
    item.prepend(mark);
    item.parentElement.scrollTop = item.offsetTop - item.parentElement.offsetTop;
  }
}

// Returns the number of cards.
export function showBoards(root, groups) {
  const cards = groups.flatMap((group) => group.lists.flatMap((list) => list.cards));
  const newest = cards.reduce((found, card) => (!found || card.date >= found.date ? card : found), null);
  reconcile(root, groups, makeGroup, fillGroup);
  markNewest(root, newest?.id);
  return cards.length;
}
