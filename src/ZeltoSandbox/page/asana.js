import { showBoards } from "/boards.js";

export const title = "Asana";

const cardOf = ({ id, name, notes, assignee, date, attachments }) =>
  ({ id, name, date, text: notes, facts: assignee ? [`Assigned to ${assignee}`] : [], files: attachments });

function listOf({ id, name, public: isPublic, archived, tasks }) {
  const tags = [...(isPublic ? [] : ["private"]), ...(archived ? ["archived"] : [])];
  return { id, name, tags, cards: tasks.map(cardOf) };
}

// A workspace may have hundreds of projects: those with tasks are shown, or the first ones where none has any.
function groupOf({ id, name, users, projects, tasks }) {
  const used = projects.filter((project) => project.tasks.length);
  const lists = (used.length ? used : projects.slice(0, 3)).map(listOf);
  const hidden = projects.length - lists.length;
  if (tasks.length) lists.push({ id: "none", name: "In no project", cards: tasks.map(cardOf) });
  const note = hidden ? `and ${hidden} ${used.length ? "projects without tasks" : "more projects"}` : projects.length ? "" : "No projects";
  return { id, name, tags: [users === 1 ? "1 user" : `${users} users`], lists, note };
}

export function show(root, { workspaces }) {
  return showBoards(root, workspaces.map(groupOf));
}
