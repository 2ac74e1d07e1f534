import { showBoards } from "/boards.js";

export const title = "Trello";

const fileOf = ({ name, mimeType, bytes, url }) => ({ name, mediaType: mimeType, size: bytes, url });
const cardOf = ({ id, name, desc, date, attachments }) =>
  ({ id, name, date, text: desc, form: "markdown", files: attachments.map(fileOf) });
const listOf = ({ id, name, closed, cards }) => ({ id, name, tags: closed ? ["archived"] : [], cards: cards.map(cardOf) });
const boardOf = ({ id, name, closed, lists }) => ({ id, name, tags: closed ? ["closed"] : [], isClosed: closed, lists: lists.map(listOf) });

export function show(root, { boards }) {
  return showBoards(root, boards.map(boardOf));
}
