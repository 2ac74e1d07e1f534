"""What the other tests rely on: each way of detection notices an attack that does run."""

import http.server
import threading

from attacks import OUTSIDE, attack
from browser_case import Case
from chromium import wait_for


class Detection(Case):
    def test_an_attack_that_runs_is_noticed(self):
        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(handler):
                handler.send_response(200)
                handler.send_header("Content-Type", "text/html")
                handler.end_headers()
                handler.wfile.write(f"<script>{attack(self.trap)}</script>".encode())

            def log_message(handler, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.tab.open(f"http://127.0.0.1:{server.server_address[1]}/")
        wait_for("the console", lambda: "console: canary" in self.tab.said)
        wait_for("the dialog", lambda: "dialog: canary" in self.tab.said)
        wait_for("the call of a name", lambda: any(OUTSIDE in call for call in self.browser.trap.calls))
        wait_for("the call of an address", lambda: any(call.startswith("GET / ") for call in self.browser.trap.calls))
        self.assertEqual(self.tab.run("window.zeltoCanary"), 1)
        with self.assertRaises(AssertionError):
            self.assertNothingRan()
        with self.assertRaises(AssertionError):
            self.assertNoCalls()
