import { element, foreign, longText, reconcile, sizeText, webLink } from "/text.js";

const shownCards = 100; // of a list

function attachmentItem(attachment) {
  const item = element("li");
  if (/^\/files\/[\w-]+$/.test(attachment.url)) {
    const link = foreign("a", "", attachment.name);
    link.href = attachment.url;
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    item.append(link, foreign("span", "note", `${attachment.mimeType}, ${sizeText(attachment.bytes)}`));
  } else {
    item.append(foreign("span", "", attachment.name), webLink(attachment.url));
  }
  return item;
}

function fillCard(item, card) {
  item.replaceChildren(longText("h4", "", card.name, { longest: 200 }));
  if (card.desc) item.append(longText("div", "description", card.desc, { links: true }));
  if (card.attachments?.length) {
    const list = element("ul", "attachments");
    list.append(...card.attachments.map(attachmentItem));
    item.append(list);
  }
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
  if (list.closed) title.append(element("span", "tag", "archived"));
  const shown = latest(list.cards);
  reconcile(cards, shown, () => element("li", "card"), fillCard);
  const hidden = list.cards.length - shown.length;
  note.textContent = hidden ? `and ${hidden} older` : list.cards.length ? "" : "No cards";
}

function makeBoard(board) {
  const details = element("details", "board");
  details.open = !board.closed;
  details.append(element("summary"), element("div", "lists"));
  return details;
}

function fillBoard(details, board) {
  const [summary, lists] = details.children;
  summary.replaceChildren(foreign("bdi", "", board.name));
  if (board.closed) summary.append(element("span", "tag", "closed"));
  reconcile(lists, board.lists, makeList, fillList);
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

// Gives the number of cards.
export function showTrello(root, { boards = [] }) {
  const cards = boards.flatMap((board) => board.lists.flatMap((list) => list.cards));
  const newest = cards.reduce((found, card) => (!found || card.date >= found.date ? card : found), null);
  reconcile(root, boards, makeBoard, fillBoard);
  markNewest(root, newest?.id);
  return cards.length;
}
