// The meetings of an account as a list: when each is and how long, its host, its identifier and its join page, what it
// was before it was changed, and that it was deleted.
import { element, foreign, longText, reconcile, webLink } from "/text.js";

const shownMeetings = 100; // the latest
const noFixedTime = 3000; // the first year that stands for none

const counted = (count, unit) => `${count.toLocaleString("en")} ${unit}${count === 1 ? "" : "s"}`;
const momentText = (date) => new Date(date).toLocaleString("en-GB", { dateStyle: "medium", timeStyle: "medium" });
const dayText = (date) => date.toLocaleDateString("en-GB", { weekday: "short", day: "numeric", month: "short", year: "numeric" });
const timeText = (date) => date.toLocaleTimeString("en-GB", { hour: "2-digit", minute: "2-digit" });

function timesText({ start, end }) {
  if (!start) return "No fixed time";
  const from = new Date(start);
  if (from.getUTCFullYear() >= noFixedTime) return `No fixed time (${dayText(from)})`;
  const to = new Date(end);
  const until = dayText(from) === dayText(to) ? timeText(to) : `${dayText(to)}, ${timeText(to)}`;
  return `${dayText(from)}, ${timeText(from)} – ${until}`;
}

function lengthText({ start, end }) {
  if (!start) return "";
  const seconds = Math.round((new Date(end) - new Date(start)) / 1000);
  const parts = [[Math.floor(seconds / 86_400), "day"], [Math.floor(seconds / 3600) % 24, "hour"],
                 [Math.floor(seconds / 60) % 60, "minute"], [seconds % 60, "second"]];
  return parts.filter(([count]) => count > 0).map(([count, unit]) => counted(count, unit)).join(" ") || "0 minutes";
}

// The join page, as a browser reaches it at the sandbox's own address.
function joinLink(address) {
  const url = URL.canParse(address) ? new URL(address) : null;
  if (url?.protocol !== "https:") return webLink(address);
  const link = webLink(`${location.origin}/host/${url.host}${url.pathname}${url.search}`);
  link.className = "join";
  link.textContent = "Join page";
  link.title = address;
  return link;
}

function titleOf({ title }, tag) {
  return title ? longText(tag, "", title, { limit: 200 }) : element(tag, "untitled", "No title");
}

function earlierItem(version) {
  const item = element("li");
  item.append(titleOf(version, "span"), element("span", "note", `${timesText(version)}, until ${momentText(version.replaced)}`));
  return item;
}

function appendEarlier(parent, { earlier, changeCount }) {
  if (!changeCount) return;
  const details = element("details", "earlier");
  const list = element("ol");
  list.append(...earlier.map(earlierItem).reverse());
  details.append(element("summary", "", `Changed ${counted(changeCount, "time")}`), list);
  if (changeCount > earlier.length) details.append(element("p", "note", `and ${changeCount - earlier.length} earlier`));
  parent.append(details);
}

function factsOf({ id }, host) {
  const facts = element("p", "note");
  facts.append("Host: ", foreign("span", "", host), " · ID: ", foreign("code", "", id));
  return facts;
}

function fillMeeting(item, meeting) {
  const isOpen = item.querySelector("details")?.open ?? false;
  item.classList.toggle("is-newest", meeting.isNewest);
  item.classList.toggle("is-deleted", Boolean(meeting.deleted));
  const when = element("div", "when");
  when.append(element("p", "", timesText(meeting)), element("p", "note", lengthText(meeting)));
  const what = element("div", "what");
  const heading = titleOf(meeting, "h4");
  if (meeting.isNewest) heading.prepend(element("span", "newest", "newest"));
  if (meeting.kind) heading.append(foreign("span", "tag", meeting.kind));
  what.append(heading, factsOf(meeting, meeting.host));
  if (meeting.deleted) what.append(element("p", "note", `Deleted ${momentText(meeting.deleted)}`));
  appendEarlier(what, meeting);
  item.replaceChildren(when, what, joinLink(meeting.joinURL));
  const details = item.querySelector("details");
  if (details) details.open = isOpen || meeting.isNewest;
}

const latest = (meeting) => meeting.deleted ?? meeting.earlier.at(-1)?.replaced ?? meeting.date;

// Returns the number of meetings, without those that a setting has added.
export function showMeetings(root, { user, meetings }) {
  if (!root.children.length) root.append(element("p", "note"), element("ol", "meetings"), element("p", "note"));
  const [about, list, note] = root.children;
  about.replaceChildren(foreign("span", "", `${user.name}, ${user.email}`));
  const made = meetings.filter((meeting) => !meeting.isAdditional);
  const newest = meetings.filter((meeting) => !meeting.isAdditional || meeting.changeCount || meeting.deleted)
    .reduce((found, meeting) => (!found || latest(meeting) >= latest(found) ? meeting : found), null);
  const order = [...meetings.filter((meeting) => meeting.isAdditional).reverse(), ...made].reverse();
  const shown = order.slice(0, shownMeetings)
    .map((meeting) => ({ ...meeting, host: user.name, isNewest: meeting === newest }));
  reconcile(list, shown, () => element("li"), fillMeeting);
  const hidden = meetings.length - shown.length;
  note.textContent = hidden ? `and ${hidden.toLocaleString("en")} more` : meetings.length ? "" : "No meetings";
  return made.length;
}
