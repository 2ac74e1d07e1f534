// Whatever comes from outside enters the page through these functions, as text.

// Characters that are invisible or change the order of those around them, except line ends, tabs, and the two joiners
// that scripts and emoji need.
const unseen = /(?![\n\t\u200c\u200d])[\p{Cc}\p{Cf}\p{Zl}\p{Zp}]+/gu;
const webAddress = /https?:\/\/[^\s<>"'`\\^{|}\p{Cc}\p{Cf}]+/giu;

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
function withoutPunctuation(address) {
  let unopened = address.split(")").length - address.split("(").length;
  let end = address.length;
  for (; ; end -= 1) {
    const last = address[end - 1];
    if (last === ")" && unopened > 0) unopened -= 1;
    else if (!"].,;:!?*_".includes(last)) return address.slice(0, end);
  }
}

function fillWithLinks(parent, text) {
  let end = 0;
  for (const found of text.matchAll(webAddress)) {
    const closed = withoutPunctuation(found[0]);
    appendVisible(parent, text.slice(end, found.index));
    parent.append(webLink(closed));
    end = found.index + closed.length;
  }
  appendVisible(parent, text.slice(end));
}

// Foreign text, shortened beyond `limit` characters until its button is pressed; `links` makes web addresses links.
export function longText(tag, className, text, { limit = 600, links = false } = {}) {
  const whole = text.replaceAll("\r\n", "\n");
  const characters = Array.from(whole);
  const fill = links ? fillWithLinks : appendVisible;
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
    fill(made, all ? whole : characters.slice(0, limit / 2).join("") + "… ");
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
