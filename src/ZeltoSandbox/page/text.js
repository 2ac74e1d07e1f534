// Whatever comes from outside enters the page through these functions, as text.

// Characters that are invisible or change the order of those around them, except line ends, tabs, and the two joiners
// that scripts and emoji need.
const unseen = /(?![\n\t\u200c\u200d])[\p{Cc}\p{Cf}\p{Zl}\p{Zp}]+/gu;
const webAddress = /https?:\/\/[^\s<>"'`\\^{|}\p{Cc}\p{Cf}]+/giu;

// What of Markdown a reader must not see as it stands: [label](target), <target>, and characters behind a "\\".
const escaped = /\\([!-/:-@[-`{-~])/gu;
const markdownPiece = new RegExp([
  /\[(?<label>(?:\\[^]|[^\\[\]])*)\]\((?<target>(?:\\[!-~]|\([^\s()]*\)|[^\s()<>\\])+)\)/,
  /<(?<bracketed>[a-z][a-z0-9+.-]+:[^\s<>]+)>/,
  escaped,
  webAddress,
].map((each) => each.source).join("|"), "giu");

// An element of our own with plain text.
export function element(tag, className = "", text = "") {
  const made = document.createElement(tag);
  if (className) made.className = className;
  made.textContent = text;
  return made;
}

function appendVisible(parent, text) {
  let end = 0;
  for (const found of text.matchAll(unseen)) {
    const names = Array.from(found[0], (each) => "U+" + each.codePointAt().toString(16).toUpperCase().padStart(4, "0"));
    parent.append(text.slice(end, found.index), element("span", "unseen", names.join(" ")));
    end = found.index + found[0].length;
  }
  parent.append(text.slice(end));
}

// An element with foreign text, whose direction of writing does not affect what surrounds it.
export function foreign(tag, className, text) {
  const made = element(tag, className);
  made.dir = "auto";
  appendVisible(made, text.replaceAll("\r\n", "\n"));
  return made;
}

// The same for a piece of a foreign text, which has the direction of the whole.
export function foreignPiece(tag, text) {
  const made = foreign(tag, "", text);
  made.removeAttribute("dir");
  return made;
}

// An address as text; a link only if it leads to a web site, which does not learn this page's address.
export function webLink(address) {
  const url = URL.canParse(address) ? new URL(address) : null;
  if (url?.protocol !== "http:" && url?.protocol !== "https:") return foreign("span", "address", address);
  const link = foreign("a", "address", address);
  link.href = url.href;
  link.target = "_blank";
  link.rel = "noopener noreferrer";
  return link;
}

// Without the punctuation of the sentence around an address; its own brackets come in pairs.
export function withoutPunctuation(address) {
  let unopened = address.split(")").length - address.split("(").length;
  let end = address.length;
  for (; ; end -= 1) {
    const last = address[end - 1];
    if (last === ")" && unopened > 0) unopened -= 1;
    else if (!"].,;:!?*_".includes(last)) return address.slice(0, end);
  }
}

function unescaped(text) {
  return text.replaceAll(escaped, "$1");
}

// A link as its label; an address that leads to no web site is shown beside it.
export function appendLabelled(parent, label, target) {
  const link = webLink(target);
  if (!label.trim()) {
    parent.append(link);
  } else if (link.localName === "a") {
    link.title = target;
    link.replaceChildren(foreign("bdi", "", label));
    parent.append(link);
  } else {
    link.classList.add("note");
    parent.append(foreign("bdi", "", label), " (", link, ")");
  }
}

// Appends what was found and returns how much of the text that was.
function appendAddress(parent, [address]) {
  const closed = withoutPunctuation(address);
  parent.append(webLink(closed));
  return closed.length;
}

function appendMarkdown(parent, found) {
  const { label, target, bracketed } = found.groups;
  if (target !== undefined) appendLabelled(parent, unescaped(label), unescaped(target));
  else if (bracketed !== undefined) parent.append(webLink(bracketed));
  else if (found[0].startsWith("\\")) appendVisible(parent, unescaped(found[0]));
  else return appendAddress(parent, found);
  return found[0].length;
}

// The forms of foreign text: what is not shown as it stands, and how it is. `append` is given what was found of `piece`,
// and returns how much of the text that was.
const forms = {
  plain: {},
  links: { piece: webAddress, append: appendAddress },
  markdown: { piece: markdownPiece, append: appendMarkdown },
};

// Appends foreign text of a form.
export function fillWith(parent, text, { piece, append }) {
  let end = 0;
  for (const found of piece ? text.matchAll(piece) : []) {
    appendVisible(parent, text.slice(end, found.index));
    end = found.index + append(parent, found);
  }
  appendVisible(parent, text.slice(end));
}

// The beginning of a text, of that length or up to what would be cut in two.
function beginning(text, length, { piece }) {
  for (const found of piece ? text.matchAll(piece) : []) {
    if (found.index >= length) break;
    if (found.index > 0 && found.index + found[0].length > length) return text.slice(0, found.index);
  }
  return text.slice(0, length);
}

// Foreign text, shortened beyond `limit` characters until its button is pressed. `form`: "links" makes web addresses
// links, "markdown" those with a label too; or a form of one's own.
export function longText(tag, className, text, { limit = 600, form: wanted = "plain" } = {}) {
  const form = forms[wanted] ?? wanted;
  const whole = text.replaceAll("\r\n", "\n");
  const characters = Array.from(whole);
  const fill = (parent, shown) => fillWith(parent, shown, form);
  const made = element(tag, className);
  made.dir = "auto";
  if (characters.length <= limit) {
    fill(made, whole);
    return made;
  }
  const more = element("button", "more");
  more.type = "button";
  const show = (all) => {
    made.replaceChildren();
    const short = () => beginning(whole, characters.slice(0, limit / 2).join("").length, form);
    fill(made, all ? whole : short() + "… ");
    more.textContent = all ? "Show less" : `Show all ${characters.length.toLocaleString("en")} characters`;
    more.setAttribute("aria-expanded", all);
    made.append(more);
  };
  more.addEventListener("click", () => {
    show(more.getAttribute("aria-expanded") !== "true");
    more.focus();
  });
  show(false);
  return made;
}

export function sizeText(bytes) {
  if (bytes < 1000) return `${bytes} bytes`;
  if (bytes < 1e6) return `${(bytes / 1e3).toFixed(1)} kB`;
  return `${(bytes / 1e6).toFixed(1)} MB`;
}

// Gives `parent` one child for each item, in their order. Children that stay keep their focus and what is open in
// them; `update` is called for those that are new or changed.
export function reconcile(parent, items, make, update) {
  const known = new Map(Array.from(parent.children, (child) => [child.key, child]));
  const children = items.map((item) => {
    const child = known.get(item.id) ?? Object.assign(make(item), { key: item.id });
    known.delete(item.id);
    const state = JSON.stringify(item);
    if (child.state !== state) update(child, item);
    child.state = state;
    return child;
  });
  for (const gone of known.values()) gone.remove();
  let place = parent.firstElementChild;
  for (const child of children) {
    if (child === place) place = place.nextElementSibling;
    else parent.insertBefore(child, place);
  }
}
