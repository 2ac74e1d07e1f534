"""What the tests in a browser share."""

import atexit
import json
import os
import re
import tempfile
import unittest
import urllib.parse

from attacks import OUTSIDE
from chromium import Chromium, Failed
from sandbox import Sandbox

# Chromium calls its maker's servers now and then, whatever page it shows.
OWN_CALLS = re.compile(r"^\w+ (https?://)?[\w.-]+\.(google|googleapis|gstatic)\.com[:/]")


class Case(unittest.TestCase):
    """A test with one browser for all, and a sandbox and a tab of its own."""

    @classmethod
    def setUpClass(cls):
        if "browser" not in vars(Case):
            Case.scratch = tempfile.TemporaryDirectory(prefix="zelto-browser-", ignore_cleanup_errors=True)
            atexit.register(Case.scratch.cleanup)
            Case.browser = Chromium(Case.scratch.name)
            atexit.register(Case.browser.close)
            Case.trap = Case.browser.trap.server_address[1]

    def setUp(self):
        self.sandbox = self.start()
        self.addCleanup(lambda: self.sandbox.close())
        self.tab = self.browser.new_tab()
        self.addCleanup(self.browser.close_tabs)

    def start(self, port=0):
        folder = tempfile.mkdtemp(dir=self.scratch.name)
        return Sandbox(os.environ["ZELTO"], folder, port)

    def start_on_reserved_port(self):
        """On a port that the system gives to no connection while the sandbox is away."""
        first = 20_000 + os.getpid() % 10_000
        for port in range(first, first + 100):
            try:
                return self.start(port)
            except Failed:
                continue
        raise Failed(f"no port from {first} on is free")

    def show(self):
        self.tab.open(f"{self.sandbox.url}/")
        self.tab.wait("document.getElementById('connection').textContent === 'Live'")
        self.tab.wait("document.getElementById('no-requests').hidden === false || "
                      "document.querySelector('.request') !== null")

    def wait_for_text(self, text):
        self.tab.wait(f"document.body.innerText.includes({json.dumps(text)})")

    def assertNothingRan(self):
        for tab in self.browser.tabs:
            self.assertEqual(tab.said, [])
            self.assertEqual(tab.run("typeof window.zeltoCanary"), "undefined")
            hosts = [urllib.parse.urlsplit(url).hostname for url in list(tab.requests.values())]
            self.assertNotIn(OUTSIDE, hosts)
        self.assertNoCalls()

    def assertNoCalls(self):
        self.assertEqual([call for call in self.browser.trap.calls if not OWN_CALLS.match(call)], [])
