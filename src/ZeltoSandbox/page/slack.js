// Channels and direct messages as a chat: the conversations, and the messages of the one that is chosen.
import { mrkdwn } from "/mrkdwn.js";
import { element, foreign, longText, reconcile } from "/text.js";

export const title = "Slack";
export const styleSheet = "/slack.css";

const shownMessages = 100; // of a conversation, the latest
const shownText = 2400; // characters of a message that are shown at first, or half of them where it is longer
const signs = { public: "#", private: "🔒", group: "@", direct: "@" };
const headings = [["Channels", ["public", "private"]], ["Direct messages", ["group", "direct"]]];

let form; // of the messages' texts

function nameOf({ kind, name, user }, people) {
  if (kind === "direct") return people[user] ?? user;
  return kind === "group" ? name.replace(/^mpdm-|-\d+$/gu, "").split("--").join(", ") : name;
}

// The lines of the list of conversations, with its headings.
function linesOf({ conversations, people, otherChannels }, chosen) {
  return headings.flatMap(([heading, kinds], index) => {
    const lines = conversations.filter(({ kind }) => kinds.includes(kind)).map((each) => ({
      id: each.id,
      sign: signs[each.kind],
      name: nameOf(each, people),
      count: each.messages.length,
      facts: [...(each.isArchived ? ["archived"] : []), ...(each.isMember ? [] : ["not a member"])],
      isChosen: each.id === chosen,
    }));
    const hasMore = index === 0 && otherChannels > 0;
    const more = hasMore ? [{ id: "more", note: `and ${otherChannels.toLocaleString("en")} without messages` }] : [];
    return [{ id: heading, heading }, ...lines, ...more];
  });
}

function fillLine(item, { sign, name, count, facts, isChosen, heading, note }) {
  if (heading ?? note) {
    item.replaceChildren(element(heading ? "h3" : "p", heading ? "" : "note", heading ?? note));
    return;
  }
  const button = item.firstElementChild;
  button.setAttribute("aria-pressed", isChosen);
  button.replaceChildren(element("span", "sign", sign), foreign("bdi", "", name));
  if (count) button.append(element("span", "count", count));
  item.replaceChildren(button, ...facts.map((fact) => element("span", "tag", fact)));
}

function makeLine(root, line) {
  const item = element("li");
  if (line.heading ?? line.note) return item;
  const button = element("button");
  button.type = "button";
  button.addEventListener("click", () => {
    root.chosen = line.id;
    show(root, root.state);
  });
  item.append(button);
  return item;
}

function fillMessage(item, { author, date, text, cutFrom, isNewest }) {
  const time = element("time", "", new Date(date).toLocaleString("en-GB", { dateStyle: "medium", timeStyle: "short" }));
  time.dateTime = date;
  const line = element("p", "by");
  line.append(foreign("b", "", author), time);
  if (isNewest) line.append(element("span", "newest", "newest"));
  const body = element("div", "body");
  body.append(line, longText("div", "text", text, { limit: shownText, form }));
  if (cutFrom) body.append(element("p", "note", `Slack cut this message off: ${cutFrom.toLocaleString("en")} characters were sent.`));
  const picture = element("span", "picture", Array.from(author)[0] ?? "");
  picture.setAttribute("aria-hidden", "true");
  item.classList.toggle("is-newest", isNewest);
  item.replaceChildren(picture, body);
}

function fillConversation(place, conversation, { people, newest }) {
  const [heading, older, list, empty] = place.children;
  heading.replaceChildren(element("span", "sign", signs[conversation.kind]), foreign("bdi", "", nameOf(conversation, people)));
  const shown = conversation.messages.slice(-shownMessages).map((message) =>
    ({ ...message, author: people[message.author] ?? message.author, isNewest: message.id === newest }));
  reconcile(list, shown, () => element("li"), fillMessage);
  const hidden = conversation.messages.length - shown.length;
  older.textContent = hidden ? `${hidden.toLocaleString("en")} older messages` : "";
  empty.textContent = shown.length ? "" : "No messages";
}

// Scrolls to where the last message begins.
function showLast(list) {
  list.scrollTop = list.lastElementChild ? list.lastElementChild.offsetTop - list.firstElementChild.offsetTop : 0;
}

function makeChat(root) {
  const chat = element("div", "chat");
  const conversations = element("nav");
  conversations.setAttribute("aria-label", "Conversations");
  conversations.append(element("ul"));
  const place = element("section", "conversation");
  place.append(element("h3"), element("p", "note"), element("ol"), element("p", "note"));
  chat.append(conversations, place);
  root.append(element("p", "note"), chat);
}

// Returns the number of messages.
export function show(root, state) {
  const { team, user, people, conversations } = state;
  const newest = conversations.flatMap(({ messages }) => messages).reduce((found, { id }) => (id > found ? id : found), "");
  if (!root.children.length) makeChat(root);
  const [about, chat] = root.children;
  const [list, place] = chat.children;
  const isNew = newest !== root.newest;
  if (isNew) root.chosen = conversations.find(({ messages }) => messages.some(({ id }) => id === newest))?.id;
  const chosen = conversations.find(({ id }) => id === root.chosen) ?? conversations[0];
  const isOther = isNew || chosen.id !== root.shown;
  Object.assign(root, { state, newest, chosen: chosen.id, shown: chosen.id });
  form = mrkdwn({ people: new Map(Object.entries(people)), channels: new Map(conversations.map(({ id, name }) => [id, name])) });
  about.replaceChildren(foreign("span", "", `${people[user]} in ${team}`));
  reconcile(list.firstElementChild, linesOf(state, chosen.id), (line) => makeLine(root, line), fillLine);
  fillConversation(place, chosen, { people, newest });
  if (isOther) showLast(place.querySelector("ol"));
  return conversations.reduce((sum, { messages }) => sum + messages.length, 0);
}
