import { showBoards } from "/boards.js";

export const title = "Todoist";
export const styleSheet = "/todoist.css";

function dueText(due) {
  return `Due ${due.replace("T", " at ").replace(/:00(Z?)$/, "$1").replace("Z", " UTC")}`;
}

const cardOf = ({ id, content, due, date, comments }) =>
  ({ id, name: content, nameForm: "markdown", date, facts: due ? [dueText(due)] : [], form: "markdown", comments });
const listOf = ({ id, name, tasks }) => ({ id, name, cards: tasks.map(cardOf) });

export function show(root, { user, projects }) {
  const name = `${user.name}, ${user.email}`;
  return showBoards(root, [{ id: user.id, name, tags: [`${user.plan} plan`], lists: projects.map(listOf) }]);
}
