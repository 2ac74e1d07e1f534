// A row of columns that may be wider than the page: it fades at an edge beyond which there are more, and a button
// above it says how many and leads to them.
import { element } from "/text.js";

const tolerance = 2; // pixels that a column may lie beyond the edge by rounding

function beyond(columns) {
  const left = columns.scrollLeft - tolerance;
  const right = columns.scrollLeft + columns.clientWidth + tolerance;
  const children = Array.from(columns.children);
  return {
    before: children.filter((each) => each.offsetLeft < left).length,
    after: children.filter((each) => each.offsetLeft + each.offsetWidth > right).length,
  };
}

function showButton(button, count, text, side) {
  button.hidden = count === 0;
  button.textContent = text;
  button.ariaLabel = `Show ${count} more to the ${side}`;
}

// To be called when the columns of a row have changed; the rest it sees itself.
export function showBeyond(row) {
  const [columns, ways] = row.children;
  const [previous, next] = ways.children;
  const { before, after } = beyond(columns);
  showButton(previous, before, `← ${before} more`, "left");
  showButton(next, after, `${after} more →`, "right");
  columns.classList.toggle("has-before", before > 0);
  columns.classList.toggle("has-after", after > 0);
}

function makeButton(columns, direction) {
  const button = element("button");
  button.type = "button";
  button.hidden = true;
  button.addEventListener("click", () => columns.scrollBy({ left: direction * columns.clientWidth * 0.8 }));
  return button;
}

// The columns go into its first child, which has that class.
export function makeRow(className) {
  const row = element("div", "row");
  const columns = element("div", className);
  const ways = element("div", "ways");
  ways.append(makeButton(columns, -1), makeButton(columns, 1));
  row.append(columns, ways);
  columns.addEventListener("scroll", () => showBeyond(row), { passive: true });
  new ResizeObserver(() => showBeyond(row)).observe(columns);
  return row;
}
