// Slack's mrkdwn as Slack shows it.
import { appendLabelled, element, fillWith, foreignPiece, webLink, withoutPunctuation } from "/text.js";

const entities = { amp: "&", lt: "<", gt: ">" };
const specials = /^(?<sign>[@#!])(?<id>[^|]*)(?:\|(?<label>.*))?$/su;
const scheme = /^[a-z][a-z0-9+.-]*:/iu;
const quoteMark = /^(?:>|&gt;) ?/gmu;
const longQuoteMark = /^(?:>>>|&gt;&gt;&gt;) ?/u;

// Text between two marks within a line; what stands in angle brackets is one thing.
function between(mark, name) {
  const inner = `<[^<>\\n]*>|<(?![^<>\\n]*>)|[^\\n<${mark}]`;
  return `(?<![\\p{L}\\p{N}${mark}])[${mark}](?=\\S)(?<${name}>(?:${inner})+?)(?<=\\S)[${mark}](?![\\p{L}\\p{N}${mark}])`;
}

const blocks = [
  "```\\n?(?<block>(?:(?!```)[^])+)```\\n?",
  "(?<=^|\\n)(?<longQuote>(?:>>>|&gt;&gt;&gt;)[^]+)",
  "(?<=^|\\n)(?<quote>(?:(?:>|&gt;)[^\\n]*(?:\\n|$))+)",
];
const inlines = [
  "`(?<code>[^`\\n]+)`",
  "<(?<angled>[^<>\\n]+)>",
  between("*", "bold"),
  between("_", "italic"),
  between("~", "struck"),
  "&(?<entity>amp|lt|gt);",
  "(?<address>https?://(?:(?!&[lg]t;)[^\\s<>\"'`\\\\^{|}\\p{Cc}\\p{Cf}])+)",
];
const piece = new RegExp([...blocks, ...inlines].join("|"), "gu");
const inlinePiece = new RegExp(inlines.join("|"), "gu");
const styles = { bold: "b", italic: "i", struck: "s" };

const unescaped = (text) => text.replace(/&(amp|lt|gt);/gu, (_, name) => entities[name]);

// The form of texts in which users and channels go by these names, which are maps by their identifiers.
export function mrkdwn({ people, channels }) {
  const inline = { piece: inlinePiece, append };
  const whole = { piece, append };

  function special({ sign, id, label }) {
    if (sign === "@") return `@${people.get(id) ?? label ?? id}`;
    if (sign === "#") return `#${channels.get(id) ?? label ?? id}`;
    return label ?? `@${id}`;
  }

  function appendAngled(parent, text) {
    const found = specials.exec(text);
    const [target, ...labels] = text.split("|");
    if (found?.groups.sign === "!" && found.groups.id.startsWith("date^")) parent.append(foreignPiece("span", unescaped(labels.join("|"))));
    else if (found) parent.append(Object.assign(foreignPiece("span", unescaped(special(found.groups))), { className: "mention" }));
    else if (scheme.test(target)) appendLabelled(parent, unescaped(labels.join("|")), unescaped(target));
    else parent.append(foreignPiece("span", unescaped(`<${text}>`)));
  }

  function filled(tag, text, form) {
    const made = element(tag);
    fillWith(made, text, form);
    return made;
  }

  function append(parent, found) {
    const { groups } = found;
    const style = Object.keys(styles).find((name) => groups[name] !== undefined);
    if (groups.block !== undefined) parent.append(foreignPiece("pre", unescaped(groups.block)));
    else if (groups.longQuote !== undefined) parent.append(filled("blockquote", groups.longQuote.replace(longQuoteMark, ""), inline));
    else if (groups.quote !== undefined) parent.append(filled("blockquote", groups.quote.trimEnd().replace(quoteMark, ""), inline));
    else if (groups.code !== undefined) parent.append(foreignPiece("code", unescaped(groups.code)));
    else if (groups.angled !== undefined) appendAngled(parent, groups.angled);
    else if (style) parent.append(filled(styles[style], groups[style], inline));
    else if (groups.entity !== undefined) parent.append(entities[groups.entity]);
    else {
      const closed = withoutPunctuation(groups.address);
      parent.append(webLink(unescaped(closed)));
      return closed.length;
    }
    return found[0].length;
  }

  return whole;
}
