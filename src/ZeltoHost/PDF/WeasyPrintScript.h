#pragma once

#include <string_view>

namespace zelto {

// Reads cleaned HTML from standard input and writes a PDF to the path in its only argument. It loads data:
// URLs only: the fetcher refuses others, and so does the interpreter, should something bypass the fetcher.
// Presentational attributes (bgcolor, width, align), which mails use, are respected. Its exit status says why
// it failed.
inline constexpr int weasyPrintMissingStatus = 70;
inline constexpr int weasyPrintMemoryStatus = 71;

inline constexpr std::string_view weasyPrintScript = R"(
import sys
import threading

def refuse(event, arguments):
    if event.startswith("socket.") or event in ("subprocess.Popen", "os.exec", "os.fork", "os.posix_spawn",
                                                "os.system"):
        raise PermissionError(event)

try:
    import logging
    import weasyprint
except ImportError as error:
    print(error, file=sys.stderr)
    sys.exit(70)

logging.getLogger("weasyprint").setLevel(logging.CRITICAL)
logging.getLogger("fontTools").setLevel(logging.CRITICAL)

def fetch(url, timeout=10, ssl_context=None):
    if url[:5].lower() != "data:":
        raise PermissionError("only data: is loaded")
    return weasyprint.default_url_fetcher(url)

def convert():
    html = sys.stdin.buffer.read().decode("utf-8", "replace")
    page = weasyprint.CSS(url_fetcher=fetch, string="""
        @page { size: A4; margin: 15mm }
        img { max-width: 100% }
        pre { white-space: pre-wrap }
        body { overflow-wrap: anywhere }
        td, th { overflow-wrap: break-word }
    """)
    document = weasyprint.HTML(string=html, url_fetcher=fetch)
    document.write_pdf(sys.argv[1], stylesheets=[page], presentational_hints=True)

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
