"""Nothing of a mail runs on the sandbox's page, and no credential reaches it."""

import json
import re
import urllib.parse

from attacks import OUTSIDE, attack, hostile_texts
from browser_case import Case
from chromium import wait_for
from sandbox import notion_block, notion_text

# Opens all that can be opened, and returns the document's HTML.
OPENED = """
    document.querySelectorAll("details").forEach((each) => each.open = true);
    document.querySelectorAll("button[aria-expanded=false]").forEach((each) => each.click());
    new Promise((resolve) => setTimeout(() => resolve(document.documentElement.outerHTML)))
"""
# Elements whose content is wider than they are, except those that are cut or scroll on purpose.
OVERFLOWING = """
    Array.from(document.querySelectorAll("main *:not(.host, .lists)")).filter(
        (each) => each.clientWidth > 0 && each.scrollWidth > each.clientWidth + 1).map((each) => each.className)
"""


class HostileMail(Case):
    def test_credentials_never_reach_the_browser(self):
        token = self.sandbox.token()
        secrets = [token, "canary-bearer", "canary-secret", "canary-code", "canary-refresh", "canary-cookie"]
        self.sandbox.add_card(token, "A card")
        self.sandbox.send("GET", "api.todoist.com", "/api/v1/projects", Authorization="Bearer canary-bearer",
                          Cookie="session=canary-cookie")
        form = {"grant_type": "authorization_code", "client_secret": "canary-secret", "code": "canary-code",
                "refresh_token": "canary-refresh"}
        self.sandbox.send("POST", "api.todoist.com", "/oauth/access_token", urllib.parse.urlencode(form),
                          Content_Type="application/x-www-form-urlencoded")
        self.sandbox.send("POST", "api.notion.com", "/v1/oauth/token", json.dumps(form),
                          Content_Type="application/json")
        self.show()
        self.tab.wait("document.querySelectorAll('.request').length >= 5")
        self.sandbox.add_card(token, "A second card")
        self.wait_for_text("A second card")
        shown = self.tab.run(OPENED)
        self.assertTrue("***" in shown)
        received = [shown, *self.tab.stream, *map(str, list(self.tab.requests.values()))]
        received += [json.dumps(response["headers"]) for response in list(self.tab.responses.values())]
        received += [body.decode("latin-1") for body in self.tab.bodies().values()]
        self.assertTrue(any('"requests"' in text for text in received))
        for secret in secrets:
            for text in received:
                self.assertFalse(secret in text, f"{secret} in {text[:200]}")
        self.assertNothingRan()

    def test_no_text_of_a_mail_runs_or_breaks_the_layout(self):
        token = self.sandbox.token()
        for text in hostile_texts(self.trap):
            card = self.sandbox.add_card(token, text[:12_000], text)
            self.sandbox.attach(token, card, text[:200] + ".txt", "text/plain", b"harmless")
            self.sandbox.send("POST", "api.trello.com", "/1/" + urllib.parse.quote(text[:2000]), text.encode(),
                              Content_Type="text/plain", X_Note=urllib.parse.quote(text[:2000], safe=" <>\"'=;:/()"))
        self.assertShownAsText()

    def test_no_text_of_an_asana_task_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("Asana")
        for text in hostile_texts(self.trap):
            self.sandbox.add_asana_task(token, text[:12_000], text, [(text[:200] + ".txt", "text/plain", b"harmless")])
        self.assertShownAsText()

    def test_no_name_or_content_on_a_drive_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("GoogleDrive")
        for text in hostile_texts(self.trap):
            self.sandbox.drive_upload(token, text[:12_000], "text/html", text.encode())
        self.show()
        self.tab.wait("document.querySelectorAll('.of-googledrive .revisions').length >= 18")
        for number in range(self.tab.run("document.querySelectorAll('.of-googledrive td a').length")):
            opened = self.browser.new_tab()
            opened.open(self.tab.run(f"document.querySelectorAll('.of-googledrive td a')[{number}].href"))
            self.assertEqual(opened.run("document.contentType"), "text/plain")
        self.assertShownAsText()

    def test_no_text_of_a_todoist_task_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("Todoist")
        for text in hostile_texts(self.trap):
            self.sandbox.add_todoist_task(token, text[:500], text, [(text[:200] + ".txt", "text/plain", b"harmless")])
        self.assertShownAsText()

    def test_no_title_of_a_meeting_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("MicrosoftTeams")
        for text in hostile_texts(self.trap):
            meeting = self.sandbox.add_teams_meeting(token, text)
            self.sandbox.teams("PATCH", meeting["id"], token, {"subject": text + " again"})
            page = self.browser.new_tab()
            page.open(meeting["joinWebUrl"].replace("https://", f"{self.sandbox.url}/host/"))
            self.assertEqual(page.run("document.querySelectorAll('main :not(h1, p, b, span)').length"), 0)
            page.resize(900, 800)
            self.assertEqual(page.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)
        self.assertShownAsText()

    def test_no_text_of_a_notion_page_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("Notion")
        for text in hostile_texts(self.trap):
            pieces = [text[start:start + 1000] for start in range(0, min(len(text), 20_000), 1000)]
            texts = [notion_text(piece, "http://link.example/", bold=True, color="red") for piece in pieces]
            self.sandbox.add_notion_page(token, text[:1000], [notion_block(kind, *texts) for kind in
                                                              ("paragraph", "heading_1", "quote", "to_do", "bulleted_list_item")])
        self.assertShownAsText()

    def test_no_message_of_slack_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("Slack")
        for text in hostile_texts(self.trap):
            # As many messages as the page shows.
            forms = (text, f"*{text}*", f"```{text}```", f"> `{text}`", f"<http://link.example/|{text}>", f"<@{text}>",
                     f"<javascript:{text}|{text}>")
            for form in forms:
                self.sandbox.add_slack_message(token, form)
        self.assertShownAsText()

    def test_no_page_of_onenote_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("OneNote")
        script = attack(self.trap)
        quoted = script.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")
        bodies = [f"<script>{quoted}</script>", f'<img src="x" onerror="{quoted}" />', f'<svg onload="{quoted}"></svg>',
                  f'<iframe src="http://{OUTSIDE}/"></iframe>', f'<a href="javascript:{quoted}">x</a>',
                  f'<p style="background:url(http://{OUTSIDE}/)">x</p>', f'<img src="http://{OUTSIDE}/" />',
                  f'<meta http-equiv="refresh" content="0;url=http://{OUTSIDE}/" />', "<p>" + "W" * 10_000 + "</p>",
                  f'<object data="http://{OUTSIDE}/"></object><embed src="http://{OUTSIDE}/" />']
        for body in bodies:
            self.sandbox.add_onenote_page(token, body)
        for text in hostile_texts(self.trap):
            self.sandbox.add_onenote_page(token, "<p>x</p>", [(text[:200] + ".txt", "text/plain", b"harmless")], text[:2000])
        self.show()
        self.wait_for_text("__proto__")
        self.assertEqual(self.tab.run("document.querySelectorAll('main :is(img, script, svg, base, meta, link, object, "
                                      "embed, style, iframe:not([sandbox=\"\"]))').length"), 0)
        for width in (900, 1600):
            self.tab.resize(width, 800)
            self.assertEqual(self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)
            self.assertEqual(self.tab.run(OVERFLOWING), [], f"at {width} pixels")
        state = json.loads(self.sandbox.send("GET", f"127.0.0.1:{self.sandbox.port}", "/control/state")[1])
        pages = state["onenote"]["notebooks"][0]["sections"][0]["pages"]
        self.assertEqual(len(pages), len(bodies) + len(hostile_texts(self.trap)))
        visitor = self.browser.new_tab()
        for page in pages:
            visitor.open(f"{self.sandbox.url}{page['url']}")
        visitor.open(f"{self.sandbox.url}/")
        for tab in self.browser.tabs:
            self.assertEqual([each for each in tab.said if "canary" in each], [])
            self.assertEqual(tab.run("typeof window.zeltoCanary"), "undefined")
        self.assertNoCalls()

    def test_no_e_mail_of_hubspot_runs_or_breaks_the_layout(self):
        token = self.sandbox.token("Hubspot")
        script = attack(self.trap)
        markup = [f"<p onclick=\"{script}\" style=\"background:url(http://{OUTSIDE}/)\">x</p><body onload='{script}'>",
                  f"<link rel=preconnect href=\"http://{OUTSIDE}/\"><link rel=stylesheet href=\"http://{OUTSIDE}/\">",
                  f"<noscript><p title=\"</noscript><img src=x onerror='{script}'>\"></noscript>",
                  f"<math><mtext><table><mglyph><style><!--</style><img title=\"--&gt;&lt;img src=1 onerror='{script}'&gt;\">",
                  f"<img src=\"http://{OUTSIDE}/\" srcset=\"http://{OUTSIDE}/ 2x\"><video poster=\"http://{OUTSIDE}/\"></video>",
                  f"<form action=\"http://{OUTSIDE}/\"><button autofocus onfocus=\"{script}\">x</button></form>"]
        texts = hostile_texts(self.trap)
        for text in [*markup, *texts]:
            contact = self.sandbox.hubspot_contact(token, f"someone{len(text)}@mail.example", firstname=text, lastname=text[:100])
            people = {"from": {"email": text, "firstname": text}, "to": [{"email": text}] * 2}
            self.sandbox.log_in_hubspot(token, "emails", [contact], hs_email_subject=text, hs_email_text=text, hs_email_html=text,
                                        hs_email_headers=json.dumps(people))
        for text in texts:
            self.sandbox.log_in_hubspot(token, "notes", hs_note_body=text)
            self.sandbox.log_in_hubspot(token, "meetings", hs_meeting_title=text, hs_meeting_body=text,
                                        hs_meeting_external_url=text, hs_internal_meeting_notes=text)
        self.show()
        self.wait_for_text("__proto__")
        self.tab.run(OPENED)
        self.assertEqual(self.tab.run("document.querySelectorAll('main :is(img, script, svg, base, meta, link, object, "
                                      "embed, style, iframe:not([sandbox=\"\"]))').length"), 0)
        for width in (400, 900, 1600):
            self.tab.resize(width, 800)
            self.assertEqual(self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)
            self.assertEqual(self.tab.run(OVERFLOWING), [], f"at {width} pixels")
        state = json.loads(self.sandbox.send("GET", f"127.0.0.1:{self.sandbox.port}", "/control/state")[1])
        pages = [each["html"] for each in state["hubspot"]["activities"] if each["html"]]
        self.assertEqual(len(pages), len(markup) + len(texts))
        visitor = self.browser.new_tab()
        for page in pages:
            visitor.open(f"{self.sandbox.url}{page}")
        visitor.open(f"{self.sandbox.url}/")
        self.assertNothingRan()

    def assertShownAsText(self):
        self.show()
        self.wait_for_text("__proto__")
        self.tab.run(OPENED)
        self.assertEqual(self.tab.run("document.querySelectorAll('main :is(img, script, svg, iframe, base, meta, link, "
                                      "object, embed, style)').length"), 0)
        links = self.tab.run("Array.from(document.links, (each) => [each.protocol, each.target, each.rel])")
        self.assertGreater(len(links), 10)
        for link in links:
            self.assertEqual(link, ["http:", "_blank", "noopener noreferrer"])
        shown = self.tab.run("document.body.innerText")
        for name in ("U+202E", "U+2066 U+2067 U+2068 U+2069", "U+001B", "U+FEFF"):
            self.assertTrue(name in shown, name)
        self.assertIsNone(re.search("[\u202a-\u202e\u2066-\u2069\u001b\u0007\u200e\u200f]", shown))
        for width in (900, 1600):
            self.tab.resize(width, 800)
            wide = self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth")
            self.assertEqual(wide, 0, f"at {width} pixels")
            self.assertEqual(self.tab.run(OVERFLOWING), [], f"at {width} pixels")
        self.assertNothingRan()

    def test_no_file_of_a_mail_runs(self):
        token = self.sandbox.token()
        script = attack(self.trap)
        html = f"<!doctype html><script>{script}</script><img src=x onerror=\"{script}\">".encode()
        svg = (f"<svg xmlns=\"http://www.w3.org/2000/svg\" onload=\"{script}\"><script>{script}</script>"
               f"<image href=\"http://{OUTSIDE}/\"/></svg>").encode()
        files = [("page.html", "text/html", html), ("picture.svg", "image/svg+xml", svg), ("page.xhtml",
                 "application/xhtml+xml", html), ("notes.txt", "text/plain", html), ("sheet.xml", "text/xml", svg),
                 ("no-type", "", html), ("page.pdf", "application/pdf", html), ("beacon.png", "image/png", svg),
                 ("two.txt", "text/plain; charset=utf-7, text/html", html), ("module.js", "text/javascript",
                 script.encode())]
        card = self.sandbox.add_card(token, "Files")
        for name, media_type, data in files:
            self.sandbox.attach(token, card, name, media_type, data)
        self.show()
        self.tab.wait(f"document.querySelectorAll('.attachments a').length === {len(files)}")
        self.browser.send("Browser.setDownloadBehavior", {"behavior": "deny"})
        for number in range(len(files)):
            self.tab.click(f"document.querySelectorAll('.attachments a')[{number}]")
        shown = 6  # as text or as a picture; the others are saved
        wait_for("the files to open", lambda: len([tab for tab in self.browser.tabs if any(
            "/files/" in url for url in list(tab.requests.values()))]) >= shown)
        addresses = self.tab.run("Array.from(document.querySelectorAll('.attachments a'), (each) => each.href)")
        visitor = self.browser.new_tab()
        visitor.open(f"{self.sandbox.url}/")
        for address in addresses:
            status, _ = self.sandbox.send("GET", f"127.0.0.1:{self.sandbox.port}", urllib.parse.urlsplit(address).path)
            self.assertEqual(status, 200)
            visitor.send("Page.navigate", url=address)
            wait_for(f"a response for {address}", lambda: address in visitor.requests.values())
        # Whatever the files started has run by the time another page has loaded.
        visitor.open(f"{self.sandbox.url}/")
        self.assertNoCalls()
        for tab in self.browser.tabs:
            self.assertEqual([each for each in tab.said if "canary" in each], [])
