#pragma once

#include <string_view>

namespace zelto {

// Reads two cleaned HTML documents from standard input, with a NUL between them: the header, which may be
// empty, and the body. Writes a PDF of both to the path in its only argument, and to standard output the
// characters that no font has. It loads data: URLs only: the fetcher refuses others, and so does the
// interpreter, should something bypass the fetcher. Presentational attributes (bgcolor, width, align), which
// mails use, are respected. Its exit status says why it failed.
inline constexpr int weasyPrintMissingStatus = 70;
inline constexpr int weasyPrintMemoryStatus = 71;

inline constexpr std::string_view weasyPrintScript = R"(
import re
import resource
import sys
import threading
import time
from xml.etree import ElementTree

def refuse(event, arguments):
    if event.startswith("socket.") or event in ("subprocess.Popen", "os.exec", "os.fork", "os.posix_spawn",
                                                "os.system"):
        raise PermissionError(event)

try:
    import logging
    import weasyprint
    from weasyprint.document import Page
    from weasyprint.draw import draw_page, stacked
    from weasyprint.formatting_structure.boxes import InlineBox, LineBox, TextBox
    from weasyprint.text.ffi import ffi, pango
    from weasyprint.text.fonts import FontConfiguration
except ImportError as error:
    print(error, file=sys.stderr)
    sys.exit(70)

logging.getLogger("weasyprint").setLevel(logging.CRITICAL)
logging.getLogger("fontTools").setLevel(logging.CRITICAL)

def fetch(url, timeout=10, ssl_context=None):
    if url[:5].lower() != "data:":
        raise PermissionError("only data: is loaded")
    return weasyprint.default_url_fetcher(url)

page_width, page_height, margin = 210, 297, 15  # millimetres
pixels = 96 / 25.4  # of CSS, in a millimetre
maximum_scale = 2.5  # beyond that, text could not be read
gap = 5  # below the header
least_room = 60  # for the body below the header; with less it begins on the next page

fonts = FontConfiguration()

def sheet(scale, top, more):
    rules = "@page { size: %fmm %fmm; margin: %fmm }" % (page_width * scale, page_height * scale, margin * scale)
    if top is not None:
        rules += "@page :first { margin-top: %fpx }" % top
    return weasyprint.CSS(url_fetcher=fetch, string=rules + """
        html { font-size: 16px; font-family: sans-serif }
        body { margin: 0; overflow-wrap: anywhere }
        img { max-width: 100% }
        pre { white-space: pre-wrap }
        pre, code, kbd, samp, tt { font-size: 0.8125em }
        pre code, pre kbd, pre samp, pre tt { font-size: inherit }
        td, th { overflow-wrap: break-word }
        center > table, [align=center] > table, [align=CENTER] > table { margin-left: auto; margin-right: auto }
        [align=right] > table, [align=RIGHT] > table { margin-left: auto }
    """ + more)

def render(document, scale, top=None, more=""):
    return document.render(stylesheets=[sheet(scale, top, more)], presentational_hints=True, font_config=fonts)

def render_header(document):
    return document and render(document, 1, more="body { border-bottom: 1px solid #bbb; padding-bottom: 2mm }")

def root_box(page):
    return page._page_box.children[0]

def boxes_of(page):
    """All boxes whose content can be seen beyond their edge, without those within a box that cuts it off."""
    waiting = [root_box(page)]
    while waiting:
        box = waiting.pop()
        box = getattr(box, "_box", box)
        yield box
        if box.style["overflow"] == "visible":
            waiting.extend(getattr(box, "children", ()))

def right_edge(box):
    if not isinstance(box, TextBox):
        return box.border_box_x() + box.border_width()
    text = box.text.rstrip("\n")
    if not text or box.style["white_space"] not in ("nowrap", "pre") or box.style["visibility"] != "visible":
        return 0  # it is broken where the page ends, or not seen
    return box.position_x + box.width * len(text.rstrip()) / len(text)

def width_scale(document):
    """By how much the page must grow for all content to fit."""
    left, right = margin * pixels, (page_width - margin) * pixels
    edges = [right_edge(box) for page in document.pages for box in boxes_of(page)
             if not isinstance(box, (LineBox, InlineBox))]
    return min((max(edges + [right]) - left) / (right - left), maximum_scale)

def unknown_characters(document):
    unknown = set()
    for page in document.pages:
        for box in boxes_of(page):
            if isinstance(box, TextBox) and any(ord(character) > 0x2FF for character in box.text):
                unknown |= unknown_in(box)
    return unknown

def unknown_in(box):
    """Characters for which Pango has no glyph; it gives their code points in place of glyphs."""
    unknown = set()
    box.pango_layout.reactivate(box.style)
    line, _ = box.pango_layout.get_first_line()
    run = line.runs[0]
    while run != ffi.NULL:
        glyphs = run.data.glyphs
        for index in range(glyphs.num_glyphs):
            glyph = glyphs.glyphs[index].glyph
            if glyph != pango.PANGO_GLYPH_EMPTY and glyph & pango.PANGO_GLYPH_UNKNOWN_FLAG:
                unknown.add(chr(glyph & ~pango.PANGO_GLYPH_UNKNOWN_FLAG & 0x1FFFFF))
        run = run.next
    box.pango_layout.deactivate()
    return unknown

def show_boxes(element, unknown):
    table = {ord(character): "\u25a1" for character in unknown}
    for each in element.iter():
        if isinstance(each.text, str):
            each.text = each.text.translate(table)
        if isinstance(each.tail, str):
            each.tail = each.tail.translate(table)

class ScaledPage(Page):
    """A page as large as those of a body that is scaled to the paper."""

    def __init__(self, page, scale):
        self.__dict__.update(page.__dict__)
        self.page, self.scale = page, scale
        self.width, self.height = page.width * scale, page.height * scale
        self.links = [(kind, target, tuple(scale * each for each in rectangle), box)
                      for kind, target, rectangle, box in page.links]
        self.anchors, self.bookmarks = {}, []

    def paint(self, stream, left_x=0, top_y=0, scale=1, clip=False):
        self.page.paint(stream, left_x, top_y, scale * self.scale, clip)

class FirstPage(Page):
    """The body's first page with the header's last one above it: nothing of the body shows there."""

    def __init__(self, page, header, top):
        self.__dict__.update(page.__dict__)
        self.page, self.header, self.top = page, header, top
        self.links = header.links + [link for link in map(self.clipped, page.links) if link]

    def clipped(self, link):
        kind, target, (x1, y1, x2, y2), box = link
        return (kind, target, (x1, max(y1, self.top), x2, y2), box) if y2 > self.top else None

    def paint(self, stream, left_x=0, top_y=0, scale=1, clip=False):
        with stacked(stream):
            stream.rectangle(left_x, top_y + self.top * scale, self.width * scale, (self.height - self.top) * scale)
            stream.clip()
            stream.end()
            self.page.paint(stream, left_x, top_y, scale, clip)
        self.header.paint(stream, left_x, top_y, scale, clip)

def keep_proportions(element):
    """Images that are narrowed to the page."""
    for image in element.iter("img"):
        width = image.get("width", "").strip()
        if width.isdecimal() and int(width[:9]) > (page_width - 2 * margin) * pixels:
            image.attrib.pop("height", None)

def header_bottom(header):
    box = root_box(header.pages[-1])
    return box.position_y + box.margin_height()

def laid_out(header, body, scale):
    """The pages of the header, which keeps its size, and of the body, and the rendered body."""
    if header is None:
        rendered = render(body, scale)
        return rendered.pages, rendered
    above = [ScaledPage(page, scale) for page in header.pages]
    top = header_bottom(header) + gap * pixels
    if top > (page_height - margin - least_room) * pixels:
        rendered = render(body, scale)
        return above + rendered.pages, rendered
    rendered = render(body, scale, top * scale)
    first = FirstPage(rendered.pages[0], above[-1], top * scale)
    return above[:-1] + [first] + rendered.pages[1:], rendered

long_word = re.compile(r"\S{61,}")
piece_length = 20
maximum_pieces = 2000  # each takes a millisecond

def with_breaks(text):
    """The text before its first long word, and elements of the long words' pieces, with what follows them."""
    before, pieces = text, []
    for match in reversed(list(long_word.finditer(text or ""))):
        start, end = match.span()
        after = before[end:]
        for index in reversed(range(start, end, piece_length)):
            piece = ElementTree.Element("span", style="display: inline-block; text-decoration: inherit")
            piece.text, piece.tail = before[index:min(index + piece_length, end)], after
            pieces.insert(0, piece)
            after = ""
        before = before[:start]
    return before, pieces

def break_long_words(body):
    """In tables' cells, which they would widen: to let all words be broken there would take too long, since each
    letter would be measured. There may be a break before and behind an inline block."""
    count = 0
    waiting = [(body, False)]
    while waiting and count < maximum_pieces:
        parent, is_in_cell = waiting.pop()
        is_in_cell = is_in_cell or parent.tag in ("td", "th")
        waiting.extend((child, is_in_cell) for child in parent)
        if is_in_cell:
            count += break_words_in(parent)

def break_words_in(parent):
    count = len(parent)
    parent.text, content = with_breaks(parent.text)
    for child in list(parent):
        child.tail, pieces = with_breaks(child.tail)
        content += [child, *pieces]
    parent[:] = content
    return len(content) - count

def may_repeat():
    """Whether there is time for a second layout: a plain PDF is better than none."""
    limit = resource.getrlimit(resource.RLIMIT_CPU)[0]
    return limit == resource.RLIM_INFINITY or time.process_time() < limit * 0.4

def convert():
    texts = sys.stdin.buffer.read().decode("utf-8", "replace").split("\0")
    documents = [weasyprint.HTML(string=text, url_fetcher=fetch) if text else None for text in texts]
    keep_proportions(documents[1].etree_element)
    for body in documents[1].etree_element.iter("body"):
        break_long_words(body)
    header = render_header(documents[0])
    pages, rendered = laid_out(header, documents[1], 1)
    scale = width_scale(rendered)
    unknown = unknown_characters(rendered)
    if header:
        unknown |= unknown_characters(header)
    if not may_repeat():
        unknown, scale = set(), 1
    if unknown:
        for document in documents:
            if document:
                show_boxes(document.etree_element, unknown)
        header = render_header(documents[0])
    if unknown or scale > 1.01:
        pages, rendered = laid_out(header, documents[1], scale)
    else:
        scale = 1
    rendered.copy(pages).write_pdf(sys.argv[1], zoom=1 / scale)
    print(", ".join("U+%04X" % ord(character) for character in sorted(unknown)[:20])
          + (" and others" if len(unknown) > 20 else ""), end="")

status = 1

def run():
    global status
    try:
        convert()
        status = 0
    except MemoryError:
        print("out of memory", file=sys.stderr)
        status = 71
    except RecursionError:
        print("the HTML is nested too deeply", file=sys.stderr)
    except OSError as error:
        print(error, file=sys.stderr)
    except Exception as error:
        print(type(error).__name__, error, file=sys.stderr)

# Layout recurses with the nesting of the document.
threading.stack_size(256 << 20)
sys.setrecursionlimit(20000)
thread = threading.Thread(target=run)
thread.start()
sys.addaudithook(refuse)
thread.join()
sys.exit(status)
)";

} // namespace zelto
