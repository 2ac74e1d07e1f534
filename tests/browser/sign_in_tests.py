"""The pages that a sign-in leads through: the sandbox's consent page, and that of the listener of zelto connect."""

import json
import os
import re
import subprocess
import urllib.parse

from attacks import hostile_parameters
from browser_case import Case
from chromium import wait_for


class SignIn(Case):
    def test_nothing_in_a_hostile_address_runs_on_the_pages_of_a_sign_in(self):
        paths = {"trello.com": "/1/OAuthAuthorizeToken", "todoist.com": "/oauth/authorize", "unknown.example": "/"}
        names = ("oauth_token", "name", "scope", "client_id", "redirect_uri", "state", "return_url", "error")
        for text in hostile_parameters(self.trap):
            for host, path in paths.items():
                query = urllib.parse.urlencode({name: text for name in names})
                self.tab.open(f"{self.sandbox.url}/host/{host}{path}?{query}")
            self.tab.open(f"{self.sandbox.url}/{urllib.parse.quote(text)}")
            self.tab.open(f"{self.sandbox.url}/host/{urllib.parse.quote(text, safe='')}/")
        self.assertNothingRanInSpiteOfRefusals()

    def test_a_consent_page_shows_hostile_names_as_text(self):
        for text in hostile_parameters(self.trap):
            query = urllib.parse.urlencode({"client_id": text[:500], "scope": text[:500], "state": text,
                                            "response_type": "code", "redirect_uri": "http://127.0.0.1:1/callback"})
            self.tab.open(f"{self.sandbox.url}/host/todoist.com/oauth/authorize?{query}")
            self.assertIsNotNone(self.tab.run("document.getElementById('allow')"))
            found = self.tab.run("document.querySelectorAll(':is(img, script, svg, iframe, base, a)').length")
            self.assertEqual(found, 0)
        self.assertNothingRan()

    def assertNothingRanInSpiteOfRefusals(self):
        self.tab.said[:] = [each for each in self.tab.said if not each.startswith("log: Failed to load resource")]
        self.assertNothingRan()

    def sign_in(self):
        """`zelto connect`, and the address that it would open."""
        opened = os.path.join(self.sandbox.folder, "opened")
        opener = os.path.join(self.sandbox.folder, "opener")
        with open(opener, "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\nprintf %s \"$1\" > '{opened}.part' && mv '{opened}.part' '{opened}'\n")
        os.chmod(opener, 0o700)
        process = subprocess.Popen(self.sandbox.command("connect", "trello", "--opener", opener, "--json"),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        wait_for("the address of the sign-in", lambda: os.path.exists(opened) or process.poll() is not None)
        self.assertIsNone(process.poll(), process.stderr.read() if process.poll() is not None else "")
        with open(opened, encoding="utf-8") as file:
            return process, file.read()

    def test_allowing_it_in_the_browser_connects_the_account(self):
        process, address = self.sign_in()
        self.tab.open(address)
        look = ("Object.fromEntries(['width', 'padding', 'borderRadius', 'borderColor', 'font'].map((name) => "
                "[name, getComputedStyle(document.querySelector('main'))[name]]))")
        consent = self.tab.run(look)
        self.tab.click("document.getElementById('allow')")
        self.tab.wait("document.body?.innerText.includes('can be closed')")
        self.assertEqual(self.tab.run(look), consent)
        output, errors = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 0, errors)
        self.assertIn("Trello", json.loads(output)["account"]["identifier"])
        self.assertNothingRan()

    def test_the_listener_shows_its_fixed_text_for_a_hostile_address(self):
        process, address = self.sign_in()
        self.tab.open(address)
        shown = self.tab.run("document.body.innerText")
        redirect = re.search(r"http://127\.0\.0\.1:\d+/[\w/-]*", shown)
        self.assertIsNotNone(redirect, shown)
        texts = set()
        for text in hostile_parameters(self.trap):
            query = urllib.parse.urlencode({"error": "access_denied", "error_description": text, "state": text[:500]})
            self.tab.open(f"{redirect[0]}?{query}")
            texts.add(self.tab.run("document.body.innerText"))
        self.assertEqual(len(texts), 1, texts)
        self.assertIsNone(process.poll())
        self.assertNothingRanInSpiteOfRefusals()
