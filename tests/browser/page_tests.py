"""What people see of the sandbox in a browser."""

import json
import os

from browser_case import Case
from chromium import wait_for
from sandbox import ROOT, notion_block, notion_text

MAIL = os.path.join(ROOT, "examples", "mails", "project-kickoff.eml")
POLICY = ("default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
          "frame-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'self'")
TITLE = "Project kick-off: lighthouse relaunch & first week"


class Page(Case):
    def test_an_empty_sandbox_says_what_to_do_next(self):
        self.show()
        text = self.tab.run("document.body.innerText")
        self.assertIn(f"zelto connect trello --sandbox {self.sandbox.url}", text)
        self.assertIn(f"zelto export mail.eml --to trello --sandbox {self.sandbox.url}", text)
        self.assertIn("No service has received a request yet", text)
        self.assertNothingRan()

    def test_every_file_of_the_page_comes_with_the_strict_policy(self):
        self.show()
        for path in ("/", "/page.css", "/page.js", "/text.js", "/boards.js", "/columns.js", "/requests.js", "/asana.js", "/notion.js",
                     "/meetings.js", "/meetings.css", "/zoom.js", "/goto.js", "/microsoftteams.js",
                     "/notion.css", "/onenote.js", "/onenote.css", "/drives.js",
                     "/drives.css", "/dropbox.js", "/googledrive.js", "/hubspot.js", "/hubspot.css", "/mrkdwn.js", "/slack.js", "/slack.css", "/todoist.js", "/todoist.css", "/trello.js"):
            names = ["content-security-policy", "x-content-type-options", "cache-control"]
            fields = self.tab.run(f"fetch('{path}').then((response) => {names}.map((name) => response.headers.get(name)))")
            self.assertEqual(fields, [POLICY, "nosniff", "no-store"], path)

    def test_an_export_appears_at_once_with_its_files(self):
        self.show()
        self.tab.run("window.isTheFirst = true")
        self.sandbox.zelto("connect", "trello", "--token", self.sandbox.token())
        self.sandbox.zelto("export", MAIL, "--to", "trello", "--attach", "all")
        self.tab.wait("document.querySelectorAll('.card .attachments a').length === 3")
        self.assertTrue(self.tab.run("window.isTheFirst"))
        card = self.tab.run("document.querySelector('.card.is-newest').innerText")
        for text in (TITLE, "newest", "Relaunch plan.pdf", "Agenda.txt", "application/pdf", "text/plain"):
            self.assertIn(text, card)
        self.tab.wait("document.querySelectorAll('.request .accepted').length >= 4")
        lines = self.tab.run("Array.from(document.querySelectorAll('.request summary'), (each) => each.innerText)")
        self.assertTrue(any("POST" in line and "/1/cards" in line and "200" in line for line in lines), lines)
        self.assertTrue(any("api.trello.com" in line for line in lines), lines)
        self.assertTrue(self.tab.run("document.getElementById('nothing-made').hidden"))
        self.opens_files()
        self.assertNothingRan()

    def opens_files(self):
        link = "Array.from(document.querySelectorAll('.attachments a')).find((each) => each.textContent === '{}')"
        pdf = self.browser.tab_opened_by(lambda: self.tab.click(link.format("Relaunch plan.pdf")))
        # Chromium opens its own viewer only for what it recognises as a PDF file.
        wait_for("the viewer", lambda: any(response["url"].startswith("chrome-extension://") for response in
                                           list(pdf.responses.values())))
        response = next(iter(pdf.responses.values()))
        self.assertEqual((response["status"], response["mimeType"]), (200, "application/pdf"))
        self.assertTrue(pdf.run("window.opener === null"))
        text = self.browser.tab_opened_by(lambda: self.tab.click(link.format("Agenda.txt")))
        text.wait("document.body?.innerText.includes('Kick-off, Tuesday 14:00')")
        self.assertEqual(text.run("document.contentType"), "text/plain")

    def test_a_second_card_takes_the_mark_of_the_newest_and_keeps_what_is_open(self):
        token = self.sandbox.token()
        self.sandbox.add_card(token, "First", "x" * 2000)
        self.show()
        self.wait_for_text("First")
        self.tab.run("document.querySelector('.description button').click()")
        self.sandbox.add_card(token, "Second")
        self.wait_for_text("Second")
        self.assertIn("Second", self.tab.run("document.querySelector('.is-newest').innerText"))
        self.assertEqual(self.tab.run("document.querySelectorAll('.newest').length"), 1)
        self.assertEqual(self.tab.run("document.querySelector('.description button').ariaExpanded"), "true")

    def test_only_services_that_received_something_are_shown(self):
        titles = "Array.from(document.querySelectorAll('#made h2'), (each) => each.textContent)"
        self.show()
        self.assertEqual(self.tab.run(titles), [])
        self.sandbox.todoist("sync", self.sandbox.token("Todoist"), '{"resource_types": ["projects"]}')
        self.wait_for_text("Arbeit & Büro")
        self.assertEqual(self.tab.run(titles), ["Todoist"])
        self.wait_for_text("Nothing has been exported yet")
        self.sandbox.add_asana_task(self.sandbox.token("Asana"), "A task")
        self.tab.wait(f"{titles}.join() === 'Asana,Todoist'")
        self.tab.wait("document.getElementById('nothing-made').hidden")
        self.sandbox.control("reset")
        self.tab.wait(f"{titles}.length === 0")
        self.assertNothingRan()

    def test_an_asana_task_appears_with_its_notes_assignee_and_files(self):
        self.show()
        file = ("Agenda für 2027.txt", "text/plain", b"Kick-off, Tuesday 14:00")
        self.sandbox.add_asana_task(self.sandbox.token("Asana"), "Überprüfen & abheften",
                                    "See https://plan.example/a_(b)?c=1.", [file])
        self.tab.wait("document.querySelectorAll('.of-asana .card .attachments a').length === 1")
        card = self.tab.run("document.querySelector('.of-asana .card.is-newest').innerText")
        for text in ("Überprüfen & abheften", "Assigned to Robin Sandbox", "See https://plan.example/a_(b)?c=1.",
                     "Agenda für 2027.txt", "text/plain, 23 bytes"):
            self.assertIn(text, card)
        self.assertEqual(self.tab.run("document.querySelector('.of-asana .card .description a').href"),
                         "https://plan.example/a_(b)?c=1")
        section = self.tab.run("document.querySelector('.of-asana').innerText")
        for text in ("Lighthouse", "Relaunch", "and 2 projects without tasks", "and 247 more projects", "No projects"):
            self.assertIn(text, section)
        opened = self.browser.tab_opened_by(lambda: self.tab.click("document.querySelector('.attachments a')"))
        opened.wait("document.body?.innerText.includes('Kick-off, Tuesday 14:00')")
        self.assertNothingRan()

    def test_a_todoist_task_appears_with_its_due_date_comments_and_files(self):
        self.show()
        file = ("Agenda.txt", "text/plain", b"Kick-off, Tuesday 14:00")
        self.sandbox.add_todoist_task(self.sandbox.token("Todoist"), "Kick-off", "[Mail](https://mail.example/1)", [file],
                                      due="2026-12-24T09:00:00")
        self.tab.wait("document.querySelectorAll('.of-todoist .card .comments > li').length === 2")
        card = self.tab.run("document.querySelector('.of-todoist .card.is-newest').innerText")
        for text in ("Kick-off", "Due 2026-12-24 at 09:00", "Mail", "Agenda.txt"):
            self.assertIn(text, card)
        self.assertEqual(self.tab.run("document.querySelector('.of-todoist .comments a').href"), "https://mail.example/1")
        self.assertIn("free plan", self.tab.run("document.querySelector('.of-todoist summary').innerText"))
        self.tab.wait("getComputedStyle(document.querySelector('.of-todoist .card h4'), '::before').width === '13px'")
        opened = self.browser.tab_opened_by(lambda: self.tab.click("document.querySelector('.attachments a')"))
        opened.wait("document.body?.innerText.includes('Kick-off, Tuesday 14:00')")
        self.assertNothingRan()

    def test_a_notion_page_appears_as_it_would_look(self):
        self.show()
        blocks = [
            notion_block("paragraph", notion_text("See it before Friday.")),
            {"divider": {}},
            notion_block("heading_1", notion_text("Überschrift & mehr")),
            notion_block("paragraph", notion_text("bold", bold=True), notion_text(" and "),
                         notion_text("plan", "https://plan.example/1", underline=True, color="blue"), notion_text(" or "),
                         notion_text("Robin", "mailto:robin@mail.example")),
            notion_block("bulleted_list_item", notion_text("first")),
            notion_block("bulleted_list_item", notion_text("second"),
                         children=[notion_block("paragraph", notion_text("inner"))]),
            notion_block("to_do", notion_text("done"), checked=True),
            notion_block("paragraph", notion_text("مرحبا بالعالم")),
        ]
        self.sandbox.add_notion_page(self.sandbox.token("Notion"), "読書 & notes", blocks)
        paper = "document.querySelector('.of-notion .is-newest .paper')"
        self.tab.wait(f"{paper} !== null && getComputedStyle({paper}).overflowY === 'auto'")
        self.assertEqual(self.tab.run(f"Array.from({paper}.querySelector('.blocks').children, (each) => each.localName)"),
                         ["p", "hr", "h4", "p", "ul", "div", "p"])
        text = self.tab.run(f"{paper}.innerText")
        for expected in ("読書 & notes", "See it before Friday.", "Überschrift & mehr",
                         "bold and plan or Robin (mailto:robin@mail.example)", "inner", "☑ done"):
            self.assertIn(expected, text)
        style = f"getComputedStyle({paper}.querySelector('{{}}')).{{}}"
        self.assertEqual(self.tab.run(style.format(".bold", "fontWeight")), "700")
        self.assertIn("underline", self.tab.run(style.format(".underline", "textDecorationLine")))
        self.assertNotEqual(self.tab.run(style.format(".blue", "color")), self.tab.run(style.format(".bold", "color")))
        self.assertEqual(self.tab.run(style.format(".blocks > p:last-child", "direction")), "rtl")
        self.assertEqual(self.links(), [["plan", "https://plan.example/1", "_blank", "noopener noreferrer"]])
        row = self.tab.run("document.querySelector('.of-notion .is-newest tr').innerText")
        self.assertIn("newest", row)
        section = self.tab.run("document.querySelector('.of-notion').innerText")
        for expected in ("Robin Sandbox, robin@sandbox.example, in Sandbox", "Journal – Größe & Maß 📓", "Name", "Notes",
                         "and 4 databases without pages"):
            self.assertIn(expected, section)
        self.assertNothingRan()

    def test_a_notion_page_is_closed_by_the_next_one_but_not_what_somebody_has_opened(self):
        token = self.sandbox.token("Notion")
        titles = "Array.from(document.querySelectorAll('.of-notion .paper h3'), (each) => each.innerText).join()"
        for name in ("First", "Second"):
            self.sandbox.add_notion_page(token, name)
        self.show()
        self.tab.wait(f"{titles} === 'Second'")
        self.tab.run("Array.from(document.querySelectorAll('.of-notion .page-name')).find("
                     "(each) => each.innerText.includes('First')).click()")
        self.assertEqual(self.tab.run(titles), "Second,First")
        self.sandbox.add_notion_page(token, "Third", [notion_block("quote", notion_text("a"))])
        self.tab.wait(f"{titles} === 'Third,First'")
        self.sandbox.add_notion_page(token, "", database=1)
        self.tab.wait("document.querySelectorAll('.of-notion table:not([hidden])').length === 2")
        self.wait_for_text("Aufgaben im Büro ✅")
        self.wait_for_text("An empty page")
        self.assertEqual(self.tab.run(titles), "First,Untitled")
        self.assertNothingRan()

    def test_the_names_of_notion_pages_have_room_on_a_small_screen(self):
        self.sandbox.add_notion_page(self.sandbox.token("Notion"), "Weekly planning: lighthouse relaunch")
        self.tab.resize(400, 800)
        self.show()
        name = "document.querySelector('.of-notion .is-newest td')"
        self.tab.wait(f"{name} !== null && getComputedStyle({name}).paddingLeft === '12px'")
        self.assertGreater(self.tab.run(f"{name}.offsetWidth"), 150)
        children = f"Array.from({name}.firstElementChild.children, (each) => each.getBoundingClientRect())"
        (title, title_height), (mark, mark_height) = self.tab.run(f"{children}.map(({{ top, height }}) => [top, height])")
        self.assertLess(abs(title - mark), 8)
        self.assertGreater(title_height, 2 * mark_height)

    def test_many_notion_databases_without_pages_are_counted(self):
        self.sandbox.control("settings", additionalTargets=300)
        self.sandbox.notion("search", self.sandbox.token("Notion"), {})
        self.show()
        self.wait_for_text("and 300 more databases")
        self.assertEqual(self.tab.run("document.querySelectorAll('.of-notion .board').length"), 5)
        section = self.tab.run("document.querySelector('.of-notion').innerText")
        for expected in ("Untitled", "not shared", "Empty"):
            self.assertIn(expected, section)

    def test_a_onenote_page_appears_as_it_would_look_with_its_files(self):
        self.show()
        self.sandbox.zelto("connect", "onenote", "--token", self.sandbox.token("OneNote"))
        self.sandbox.zelto("export", MAIL, "--to", "onenote", "--attach", "all", "--note", "Look & see")
        self.tab.wait("document.querySelectorAll('.of-onenote .card .attachments a').length === 2")
        section = self.tab.run("document.querySelector('.of-onenote').innerText")
        for text in ("Lighthouse", "Relaunch", "full", "No sections yet", "No sections", "Große Bibliothek 図書館", TITLE,
                     "Agenda.txt", "text/plain, 163 bytes", "Relaunch plan.pdf"):
            self.assertIn(text, section)
        frame = "document.querySelector('.of-onenote iframe')"
        self.assertEqual(self.tab.run(f"[{frame}.sandbox.length, {frame}.title]"), [0, TITLE])
        self.assertGreater(self.tab.run(f"{frame}.getBoundingClientRect().height"), 200)
        page = self.browser.new_tab()
        page.open(self.tab.run(f"{frame}.src"))
        shown = page.run("document.body.innerText")
        for text in ("Look & see", "Mira", TITLE, "Agenda.txt"):
            self.assertIn(text, shown)
        link = "document.querySelector('a[href^=\"mid:\"]')"
        self.assertEqual(page.run(f"getComputedStyle({link}.parentElement).fontSize"), "32px")
        self.assertEqual(page.run("window.origin"), "null")
        self.assertNothingRan()

    SLACK_BUTTONS = "Array.from(document.querySelectorAll('.of-slack nav button'))"
    SLACK_TEXT = "document.querySelector('.of-slack .is-newest .text')"

    def choose_conversation(self, name):
        self.tab.click(f"{self.SLACK_BUTTONS}.find((each) => each.innerText.includes({json.dumps(name)}))")
        self.tab.wait(f"document.querySelector('.of-slack .conversation h3').innerText.includes({json.dumps(name)})")

    def show_message(self, text):
        """Its text as it is shown."""
        self.sandbox.add_slack_message(self.sandbox.token("Slack"), text)
        self.show()
        self.tab.wait(f"{self.SLACK_TEXT} !== null && getComputedStyle({self.SLACK_TEXT}).whiteSpace === 'pre-wrap'")
        return self.tab.run(f"{self.SLACK_TEXT}.innerText")

    def shown(self, selector):
        return self.tab.run(f"Array.from({self.SLACK_TEXT}.querySelectorAll({json.dumps(selector)}), (each) => each.innerText)")

    def test_slack_is_a_chat_that_opens_where_a_message_arrives(self):
        token = self.sandbox.token("Slack")
        self.show()
        self.sandbox.slack("auth.test", token)
        self.tab.wait("document.querySelector('.of-slack .chat') !== null")
        section = "document.querySelector('.of-slack').innerText"
        for text in ("Robin in Sandbox", "general", "büro-münchen", "図書館", "leadership", "old-project", "archived",
                     "announcements", "not a member", "robin, zoe, haruto", "Zoë ✨", "No messages"):
            self.assertIn(text, self.tab.run(section))
        self.wait_for_text("Nothing has been exported yet")
        self.sandbox.add_slack_message(token, "In the library", "C0SANDBOX03")
        self.wait_for_text("In the library")
        self.assertTrue(self.tab.run("document.getElementById('nothing-made').hidden"))
        chosen = f"{self.SLACK_BUTTONS}.filter((each) => each.ariaPressed === 'true').map((each) => each.innerText.split('\\n').slice(0, 2).join(' '))"
        self.assertEqual(self.tab.run(chosen), ["# 図書館"])
        self.sandbox.add_slack_message(token, "For Layla", "U0SANDBOX04")
        self.wait_for_text("For Layla")
        self.assertEqual(self.tab.run(chosen), ["@ ليلى حداد"])
        self.assertNotIn("In the library", self.tab.run(section))
        self.choose_conversation("図書館")
        self.assertIn("In the library", self.tab.run(section))
        # What somebody has chosen stays until the next message.
        self.sandbox.slack("auth.test", token)
        self.tab.wait("document.querySelectorAll('.request').length === 4")
        self.assertEqual(self.tab.run(chosen), ["# 図書館"])
        self.sandbox.add_slack_message(token, "Again", "U0SANDBOX04")
        self.wait_for_text("Again")
        self.assertEqual(self.tab.run(chosen), ["@ ليلى حداد"])
        self.assertEqual(self.tab.run("Array.from(document.querySelectorAll('.of-slack .conversation li'), "
                                      "(each) => each.querySelector('.newest') !== null)"), [False, True])
        self.assertNothingRan()

    def test_what_slack_refuses_by_a_response_of_success_is_marked_as_refused(self):
        token = self.sandbox.token("Slack")
        self.sandbox.slack("auth.test", token)
        self.sandbox.send("GET", "slack.com", "/api/chat.postMessage?channel=C0SANDBOX06&text=x", Authorization=f"Bearer {token}")
        self.show()
        lines = "Array.from(document.querySelectorAll('.request summary'), (each) => [each.querySelector('.status').className, each.innerText])"
        self.tab.wait(f"{lines}.length === 2")
        (refused, text), (accepted, _) = self.tab.run(lines)
        self.assertEqual([refused, accepted], ["status refused", "status accepted"])
        self.assertIn("not_in_channel: the user is no member of the channel", text)

    def test_mrkdwn_is_shown_as_slack_shows_it(self):
        shown = self.show_message("*bold* _italic_ ~struck~ *_both_* `a *b* &lt;` snake_case_name 2*3*4 * no * _ no_\n"
                                  "&amp;lt; &lt;b&gt; \"q\"\n&gt; one *two*\n&gt; three\nafter ```\n*x* <y>\n``` end")
        self.assertEqual(shown, "bold italic struck both a *b* < snake_case_name 2*3*4 * no * _ no_\n"
                                "&lt; <b> \"q\"\n\none two\nthree\nafter \n*x* <y>\n\n end")
        self.assertEqual(self.shown("b"), ["bold", "both", "two"])
        self.assertEqual(self.shown("i"), ["italic", "both"])
        self.assertEqual(self.shown("s"), ["struck"])
        self.assertEqual(self.shown("code"), ["a *b* <"])
        self.assertEqual(self.shown("blockquote"), ["one two\nthree"])
        self.assertEqual(self.shown("pre"), ["*x* <y>\n"])
        self.assertNothingRan()

    def test_a_long_quote_of_slack_reaches_to_the_end(self):
        self.show_message("before\n&gt;&gt;&gt; one\ntwo\n\n*three*")
        self.assertEqual(self.shown("blockquote"), ["one\ntwo\n\nthree"])
        self.assertEqual(self.shown("blockquote b"), ["three"])

    def test_links_and_mentions_of_slack_are_shown_as_what_they_lead_to(self):
        shown = self.show_message("<https://plan.example/?a=1&amp;b=2|the *plan* &amp; more>, <https://bare.example/>, "
                                  "https://auto.example/a_b_(c)?x=1&amp;y=2). _<https://a_b.example/c_d|styled>_ "
                                  "<mid:kickoff-2025.43@harbour.example|Kick-off> <javascript:alert(1)|script> "
                                  "<mailto:mira@harbour.example|Mira> <script> "
                                  "<@U0SANDBOX02> <@U0UNKNOWN01> <#C0SANDBOX03> <#C9|else> <!here> <!subteam^S1|@crew> "
                                  "<!date^1392734382^{date}|Feb 18>")
        self.assertEqual(shown, "the *plan* & more, https://bare.example/, https://auto.example/a_b_(c)?x=1&y=2). styled "
                                "Kick-off (mid:kickoff-2025.43@harbour.example) script (javascript:alert(1)) "
                                "Mira (mailto:mira@harbour.example) <script> "
                                "@Zoë ✨ @U0UNKNOWN01 #図書館 #else @here @crew Feb 18")
        rules = ["_blank", "noopener noreferrer"]
        self.assertEqual(self.links(), [["the *plan* & more", "https://plan.example/?a=1&b=2", *rules],
                                        ["https://bare.example/", "https://bare.example/", *rules],
                                        ["https://auto.example/a_b_(c)?x=1&y=2", "https://auto.example/a_b_(c)?x=1&y=2", *rules],
                                        ["styled", "https://a_b.example/c_d", *rules]])
        self.assertEqual(self.shown("i a"), ["styled"])
        self.assertNothingRan()

    def test_a_message_that_slack_cut_says_so_and_opens_whole(self):
        self.show_message("word " * 8000 + "lost")
        self.wait_for_text("Slack cut this message off: 40,004 characters were sent.")
        self.tab.click("Array.from(document.querySelectorAll('.of-slack .more')).find((each) => "
                       "each.innerText === 'Show all 40,000 characters')")
        self.tab.wait(f"{self.SLACK_TEXT}.innerText.length > 39000")
        self.assertNotIn("lost", self.tab.run(f"{self.SLACK_TEXT}.innerText"))

    def test_many_channels_and_messages_of_slack_are_counted(self):
        token = self.sandbox.token("Slack")
        self.sandbox.control("settings", slack={"additionalChannels": 2000, "additionalUsers": 12_000})
        self.sandbox.add_slack_message(token, "To one of many", "additional-1999")
        for number in range(103):
            self.sandbox.add_slack_message(token, f"Message {number}")
        self.show()
        self.wait_for_text("Message 102")
        self.wait_for_text("and 1,999 without messages")
        self.wait_for_text("3 older messages")
        self.wait_for_text("additional-1999")
        self.assertEqual(self.tab.run("document.querySelectorAll('.of-slack .conversation li').length"), 100)

    def test_the_chat_has_room_on_a_small_screen(self):
        self.tab.resize(400, 800)
        self.show_message("Good morning")
        widths = "['nav', '.conversation'].map((each) => document.querySelector('.of-slack ' + each).clientWidth)"
        for width in self.tab.run(widths):
            self.assertGreater(width, 300)
        self.assertEqual(self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)

    def test_what_is_logged_in_hubspot_appears_as_a_timeline_with_its_contacts(self):
        token = self.sandbox.token("Hubspot")
        self.show()
        mira = self.sandbox.hubspot_contact(token, "Mira@harbour.example")
        ana = self.sandbox.hubspot_contact(token, "ana@quay.example", firstname="Ana", lastname="Reis",
                                           lifecyclestage="268312745", hs_lead_status="IN_PROGRESS")
        self.sandbox.log_in_hubspot(token, "notes", [mira], hs_note_body="Minutes\n\nhttps://plan.example/a_(b)?c=1.")
        self.sandbox.log_in_hubspot(token, "meetings", [mira, ana], hs_meeting_title="Planning", hs_meeting_body="Agenda",
                                    hs_internal_meeting_notes="For us", hs_meeting_external_url="https://meet.example/1",
                                    hs_meeting_start_time="2026-12-24T09:00:00Z", hs_meeting_end_time=1798106400000)
        people = {"from": {"email": "mira@harbour.example", "firstname": "Mira"}, "to": [{"email": "ana@quay.example"}]}
        self.sandbox.log_in_hubspot(token, "emails", [mira, ana], hs_email_subject="Größe & Maß", hs_email_text="In plain text",
                                    hs_email_direction="INCOMING_EMAIL", hs_email_headers=json.dumps(people),
                                    hs_email_html="<p onclick=run()>Hello<p><b>and more</b>")
        self.tab.wait("document.querySelectorAll('.of-hubspot .card').length === 3")
        cards = self.tab.run("Array.from(document.querySelectorAll('.of-hubspot .card'), (each) => each.innerText)")
        for card, texts in zip(cards, [
                ("E-mail", "newest", "Größe & Maß", "Mira <mira@harbour.example>", "ana@quay.example", "Incoming", "Plain text",
                 "Associated with", "Mira Lindqvist", "Ana Reis"),
                ("Meeting", "Planning", "24 Dec 2026", "https://meet.example/1", "Agenda", "Internal notes", "For us", "Ana Reis"),
                ("Note", "Minutes\n\nhttps://plan.example/a_(b)?c=1.", "Mira Lindqvist")]):
            for text in texts:
                self.assertIn(text, card)
        self.assertEqual(self.tab.run("document.querySelectorAll('.of-hubspot .newest').length"), 1)
        rows = self.tab.run("Array.from(document.querySelectorAll('.of-hubspot tbody tr'), (each) => each.innerText.split(/\\s*[\\t\\n]\\s*/))")
        self.assertEqual(rows[0], ["Ana Reis new", "ana@quay.example", "Bestandskunde – Büro & Ärzte 🌱", "In progress", "2"])
        self.assertEqual(rows[1], ["Mira Lindqvist", "mira@harbour.example", "Customer", "Connected", "3"])
        self.assertEqual(len(rows), 8)
        frame = "document.querySelector('.of-hubspot iframe')"
        self.assertEqual(self.tab.run(f"[{frame}.sandbox.length, {frame}.title]"), [0, "Größe & Maß"])
        page = self.browser.new_tab()
        page.open(self.tab.run(f"{frame}.src"))
        self.assertEqual(page.run("document.body.innerText"), "Hello\n\nand more")
        self.assertEqual(page.run("window.origin"), "null")
        self.assertNothingRan()

    def test_many_contacts_of_hubspot_are_counted(self):
        token = self.sandbox.token("Hubspot")
        self.sandbox.control("settings", hubspot={"additionalContacts": 2000})
        self.sandbox.log_in_hubspot(token, "emails", [str(1_000_000 + number) for number in range(1, 2001)])
        self.show()
        self.wait_for_text("and 1,988 more")
        self.wait_for_text("and 1,982 more contacts")
        self.assertIn("No subject", self.tab.run("document.querySelector('.of-hubspot .card').innerText"))
        self.tab.resize(400, 800)
        cell = "document.querySelector('.of-hubspot tbody td')"
        self.tab.wait(f"{cell}.offsetWidth > 250")
        self.assertEqual(self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)
        self.assertNothingRan()

    # Of the table of a drive.
    NAMES = "Array.from(document.querySelectorAll('.of-{} td:first-child > :is(a, bdi, button)'), (each) => each.innerText)"

    def click_button(self, name):
        self.tab.click("Array.from(document.querySelectorAll('#made button')).find("
                       f"(each) => each.innerText === {json.dumps(name)})")

    def test_a_drive_is_a_browser_of_its_files(self):
        self.show()
        self.sandbox.drive_files(self.sandbox.token("GoogleDrive"), "trashed = false")
        names = self.NAMES.format("googledrive")
        self.tab.wait(f"{names}.length === 5")
        self.assertEqual(self.tab.run(names), ["Büro & Zuhause 🏡", "Drafts of last year", "Empty", "Projects", "Read me.txt"])
        self.assertIn("Nothing has been exported yet", self.tab.run("document.body.innerText"))
        self.click_button("Projects")
        self.assertEqual(self.tab.run(names), ["Lighthouse", "図書館", "Minutes", "Old plan.txt", "Report.txt", "Report.txt",
                                               "Robin's \\ notes.txt"])
        section = "document.querySelector('.of-googledrive').innerText"
        for text in ("in the trash", "application/vnd.google-apps.document", "2 items", "22 bytes", "robin@sandbox.example"):
            self.assertIn(text, self.tab.run(section))
        self.click_button("Lighthouse")
        self.assertEqual(self.tab.run("document.querySelector('.of-googledrive .crumbs').innerText.split(/\\s*›?\\n/)"),
                         ["All files", "Projects", "Lighthouse"])
        link = "Array.from(document.querySelectorAll('.of-googledrive a')).find((each) => each.innerText.includes({!r}))"
        pdf = self.browser.tab_opened_by(lambda: self.tab.click(link.format("Plan.pdf")))
        wait_for("the viewer", lambda: any(response["url"].startswith("chrome-extension://") for response in
                                           list(pdf.responses.values())))
        picture = self.browser.tab_opened_by(lambda: self.tab.click(link.format("Leuchtturm")))
        picture.wait("document.querySelector('img')?.naturalHeight === 128")
        self.click_button("All files")
        self.click_button("Empty")
        self.assertIn("This folder is empty", self.tab.run(section))
        self.assertNothingRan()

    def test_an_upload_opens_its_folder_and_shows_each_revision(self):
        token = self.sandbox.token("Dropbox")
        self.show()
        self.sandbox.dropbox_upload(token, "/Mails/Kick-off.txt", b"first")
        names = self.NAMES.format("dropbox")
        self.tab.wait(f"{names}.join() === 'Kick-off.txt'")
        self.assertTrue(self.tab.run("document.getElementById('nothing-made').hidden"))
        self.assertEqual(self.tab.run("document.querySelectorAll('.of-dropbox .revisions-of').length"), 0)
        self.sandbox.dropbox_upload(token, "/Mails/Kick-off.txt", b"second")
        self.wait_for_text("2 revisions")
        self.click_button("2 revisions")
        links = "document.querySelectorAll('.of-dropbox .revisions:not([hidden]) a')"
        self.assertEqual(self.tab.run(f"{links}.length"), 2)
        first = self.browser.tab_opened_by(lambda: self.tab.click(f"{links}[1]"))
        first.wait("document.body?.innerText === 'first'")
        self.click_button("All files")
        self.assertIn("Read me.txt", self.tab.run(names))
        self.sandbox.dropbox_upload(token, "/Projects/Plan.html", b"<p>Plan</p>")
        self.tab.wait(f"{names}.includes('Plan.html')")
        self.assertIn("newest", self.tab.run("document.querySelector('.of-dropbox .is-newest').innerText"))
        self.assertNothingRan()

    def test_html_on_a_drive_is_shown_as_text(self):
        self.show()
        self.sandbox.drive_files(self.sandbox.token("GoogleDrive"), "trashed = false")
        self.wait_for_text("Büro & Zuhause")
        self.click_button("Büro & Zuhause 🏡")
        text = self.browser.tab_opened_by(lambda: self.tab.click("document.querySelectorAll('.of-googledrive td a')[1]"))
        text.wait("document.body?.innerText.includes('<script>document.body.append')")
        self.assertEqual(text.run("document.contentType"), "text/plain")
        self.assertNothingRan()

    def test_many_files_of_a_drive_are_counted(self):
        self.sandbox.control("settings", drives={"additionalFiles": 10_000})
        self.sandbox.drive_files(self.sandbox.token("GoogleDrive"), "trashed = false")
        self.show()
        self.wait_for_text("10,000 items")
        self.click_button("Additional files")
        self.wait_for_text("and 9,800 more")
        self.assertEqual(self.tab.run(f"{self.NAMES.format('googledrive')}.length"), 200)

    def meeting(self, number, key="zoom"):
        """The text of the n-th meeting in the list of a service."""
        return self.tab.run(f"document.querySelectorAll('.of-{key} .meetings > li')[{number}].innerText")

    def test_meetings_are_listed_with_what_they_were_and_that_they_were_deleted(self):
        self.show()
        token = self.sandbox.token("Zoom")
        first = self.sandbox.add_zoom_meeting(token, "Überblick & 図書館")
        second = self.sandbox.add_zoom_meeting(token, "Weekly", type=3)
        self.tab.wait("document.querySelectorAll('.of-zoom .meetings > li').length === 2")
        for text in ("No fixed time", "newest", "Weekly", "recurring", f"ID: {second['id']}"):
            self.assertIn(text, self.meeting(0))
        for text in ("24 Dec 2026", "45 minutes", "Überblick & 図書館", "scheduled", "Host: Robin Sandbox", f"ID: {first['id']}"):
            self.assertIn(text, self.meeting(1))
        self.sandbox.zoom("PATCH", f"meetings/{first['id']}", token, {"topic": "Rückblick", "duration": 90})
        self.wait_for_text("Changed 1 time")
        for text in ("newest", "Rückblick", "1 hour 30 minutes", "Überblick & 図書館", "until"):
            self.assertIn(text, self.meeting(1))
        self.sandbox.zoom("DELETE", f"meetings/{second['id']}", token)
        self.tab.wait("document.querySelector('.of-zoom .is-deleted') !== null")
        self.assertIn("Deleted", self.meeting(0))
        self.tab.wait("getComputedStyle(document.querySelector('.is-deleted h4')).textDecorationLine === 'line-through'")
        self.assertTrue(self.tab.run("document.getElementById('nothing-made').hidden"))
        self.assertNothingRan()

    def test_a_meeting_opens_its_join_page(self):
        token = self.sandbox.token("Zoom")
        meeting = self.sandbox.add_zoom_meeting(token, "Kick-off")
        self.sandbox.add_goto_meeting(self.sandbox.token("GoTo"), "Of GoTo")
        self.sandbox.add_teams_meeting(self.sandbox.token("MicrosoftTeams"), "Of Teams")
        self.show()
        self.tab.wait("document.querySelectorAll('.join').length === 3")
        for key, text in (("zoom", "Kick-off"), ("goto", "Of GoTo"), ("microsoftteams", "Of Teams")):
            page = self.browser.tab_opened_by(lambda: self.tab.click(f"document.querySelector('.of-{key} .join')"))
            page.wait(f"document.querySelector('h1')?.innerText === {json.dumps(text)}")
            self.assertIn("Host: Robin Sandbox", page.run("document.body.innerText"))
            self.assertTrue(page.run("window.opener === null"))
            self.assertEqual(page.run("getComputedStyle(document.querySelector('main')).borderTopStyle"), "solid")
        self.sandbox.zoom("DELETE", f"meetings/{meeting['id']}", token)
        gone = self.browser.tab_opened_by(lambda: self.tab.click("document.querySelector('.of-zoom .join')"))
        gone.wait("document.querySelector('h1')?.innerText === 'This meeting was deleted'")

    def test_many_meetings_are_counted(self):
        self.sandbox.control("settings", meetings={"additionalMeetings": 150})
        self.sandbox.add_teams_meeting(self.sandbox.token("MicrosoftTeams"), "Mine")
        self.show()
        self.wait_for_text("and 51 more")
        self.assertIn("Mine", self.meeting(0, "microsoftteams"))
        self.assertIn("Additional meeting 1", self.meeting(1, "microsoftteams"))
        self.assertIn("Additional meeting 99", self.meeting(99, "microsoftteams"))

    def test_meetings_have_room_on_a_small_screen(self):
        self.sandbox.add_teams_meeting(self.sandbox.token("MicrosoftTeams"), "Lighthouse relaunch")
        self.tab.resize(400, 800)
        self.show()
        item = "document.querySelector('.meetings > li')"
        self.tab.wait(f"{item} !== null && getComputedStyle({item}).display === 'grid'")
        self.assertGreater(self.tab.run(f"{item}.querySelector('.what').offsetWidth"), 250)
        self.assertEqual(self.tab.run("document.documentElement.scrollWidth - document.documentElement.clientWidth"), 0)

    def test_an_attached_address_is_shown_with_its_link(self):
        token = self.sandbox.token()
        text = "See [the plan](https://plan.example/a_(b)?c=1) and mailapp://open/1."
        card = self.sandbox.add_card(token, "Links", text)
        self.sandbox.trello("POST", f"cards/{card}/attachments", token, query=[("url", "https://example.com/page?a=b")])
        self.show()
        self.tab.wait("document.querySelector('.attachments .address') !== null")
        rules = ["_blank", "noopener noreferrer"]
        self.assertEqual(self.links(), [["the plan", "https://plan.example/a_(b)?c=1", *rules],
                                        ["https://example.com/page?a=b", "https://example.com/page?a=b", *rules]])

    def links(self):
        return self.tab.run("Array.from(document.links, (each) => [each.textContent, each.href, each.target, each.rel])")

    def test_markdown_is_shown_as_text_with_its_links(self):
        text = ("\\*Not bold\\*, [a \\[plan\\] \\<b>](https://plan.example/a_(b)?c=%29), <https://auto.example/x>, "
                "https://bare.example/y_z).\n\n[Kick-off](mid:kickoff-2025.43@harbour.example), "
                "[](https://empty.example/), [script](javascript:alert(1)), [no link], C:\\Users, <b>a</b>")
        self.sandbox.add_card(self.sandbox.token(), "[Title](https://title.example/)", text)
        self.show()
        self.wait_for_text("Not bold")
        shown = self.tab.run("document.querySelector('.description').innerText")
        self.assertEqual(shown, "*Not bold*, a [plan] <b>, https://auto.example/x, https://bare.example/y_z).\n\n"
                                "Kick-off (mid:kickoff-2025.43@harbour.example), https://empty.example/, "
                                "script (javascript:alert(1)), [no link], C:\\Users, <b>a</b>")
        self.assertEqual([each[:2] for each in self.links()],
                         [["a [plan] <b>", "https://plan.example/a_(b)?c=%29"],
                          ["https://auto.example/x", "https://auto.example/x"],
                          ["https://bare.example/y_z", "https://bare.example/y_z"],
                          ["https://empty.example/", "https://empty.example/"]])
        self.assertEqual(self.tab.run("document.querySelector('.card h4').innerText"), "[Title](https://title.example/)")
        self.assertNothingRan()

    def test_text_that_is_no_markdown_is_shown_as_it_is(self):
        self.sandbox.add_asana_task(self.sandbox.token("Asana"), "Plain", "[a](https://plan.example/1) and \\*")
        self.show()
        self.wait_for_text("[a](https://plan.example/1) and \\*")
        self.assertEqual([each[1] for each in self.links()], ["https://plan.example/1"])

    def test_a_link_is_not_cut_in_two(self):
        text = "word " * 55 + "[the plan of it](https://plan.example/" + "x" * 300 + ")"
        self.sandbox.add_card(self.sandbox.token(), "Long", text)
        self.show()
        self.wait_for_text("Show all")
        self.assertNotIn("the plan", self.tab.run("document.querySelector('.description').innerText"))
        self.tab.run("document.querySelector('.description button').click()")
        self.assertEqual([each[0] for each in self.links()], ["the plan of it"])

    def test_a_board_that_is_wider_than_the_window_leads_to_its_other_columns(self):
        def hint(number):
            return f"document.querySelectorAll('.of-trello .board .ways > button')[{number}]"
        columns = "document.querySelector('.of-trello .lists')"
        self.sandbox.add_card(self.sandbox.token(), "A card")
        self.tab.resize(600, 800)
        self.show()
        self.wait_for_text("A card")
        count = self.tab.run(f"{columns}.children.length")
        self.assertGreater(count, 3)
        self.tab.wait(f"{hint(1)}.hidden === false")
        self.assertRegex(self.tab.run(f"{hint(1)}.innerText"), f"^[1-{count - 1}] more →$")
        self.assertTrue(self.tab.run(f"{hint(0)}.hidden"))
        self.assertNotEqual(self.tab.run(f"getComputedStyle({columns}).maskImage"), "none")
        while not self.tab.run(f"{hint(1)}.hidden"):
            before = self.tab.run(f"{columns}.scrollLeft")
            self.tab.run(f"{hint(1)}.click()")
            self.tab.wait(f"{columns}.scrollLeft > {before} || {hint(1)}.hidden")
        self.tab.wait(f"{hint(0)}.hidden === false")
        self.assertRegex(self.tab.run(f"{hint(0)}.innerText"), "^← [1-9] more$")
        self.tab.resize(4000, 800)
        self.tab.wait(f"{hint(0)}.hidden && {hint(1)}.hidden")
        self.assertEqual(self.tab.run(f"getComputedStyle({columns}).maskImage"), "none")
        self.assertNothingRan()

    def test_the_requests_of_one_service_can_be_chosen_and_opened_by_keyboard(self):
        self.sandbox.add_card(self.sandbox.token(), "A card")
        self.sandbox.send("GET", "api.todoist.com", "/api/v1/projects", Authorization="Bearer unknown")
        self.show()
        names = "Array.from(document.querySelectorAll('#services button'), (each) => each.textContent)"
        self.tab.wait(f"{names}.length === 3")
        self.assertIn("Todoist", " ".join(self.tab.run(names)))
        self.tab.run("Array.from(document.querySelectorAll('#services button')).find((each) => "
                     "each.textContent.startsWith('Todoist')).focus()")
        self.press("Enter")
        self.assertEqual(self.tab.run("document.querySelectorAll('#requests > li:not([hidden])').length"), 1)
        for _ in range(3):
            if self.tab.run("document.activeElement.tagName") == "BUTTON":
                self.press("Tab")
        self.assertEqual(self.tab.run("document.activeElement.tagName"), "SUMMARY")
        self.press("Enter")
        self.tab.wait("document.querySelector('.request[open] dl') !== null")
        self.assertIn("401", self.tab.run("document.querySelector('.request[open]').innerText"))

    def press(self, key):
        code = {"Enter": 13, "Tab": 9}[key]
        text = {"text": "\r"} if key == "Enter" else {}
        self.tab.send("Input.dispatchKeyEvent", type="keyDown", key=key, windowsVirtualKeyCode=code, **text)
        self.tab.send("Input.dispatchKeyEvent", type="keyUp", key=key, windowsVirtualKeyCode=code)

    def test_only_the_latest_requests_stay_in_the_page(self):
        for number in range(230):
            self.sandbox.send("GET", "api.trello.com", f"/1/members/me?number={number}")
        self.show()
        self.tab.wait("document.querySelectorAll('.request').length === 200")
        self.wait_for_text("and 30 older")
        self.sandbox.send("GET", "api.trello.com", "/1/members/me?number=last")
        self.wait_for_text("and 31 older")
        self.assertEqual(self.tab.run("document.querySelectorAll('.request').length"), 200)
        # The count may come before the request.
        self.tab.wait("document.querySelector('.request').innerText.includes('number=last')")

    def test_the_page_shows_that_the_sandbox_has_ended_and_that_it_is_back(self):
        self.sandbox.close()
        self.sandbox = self.start_on_reserved_port()
        self.sandbox.add_card(self.sandbox.token(), "Before the end")
        self.show()
        self.wait_for_text("Before the end")
        port = self.sandbox.port
        self.sandbox.close()
        self.wait_for_text("The sandbox has ended")
        self.tab.said.clear()  # what the browser logs of the lost connection
        self.sandbox = self.start(port)
        self.tab.wait("document.getElementById('connection').textContent === 'Live'")
        self.wait_for_text("Nothing has been exported yet")
        self.assertEqual(self.tab.run("document.querySelectorAll('.card, .request').length"), 0)

    def test_a_reset_empties_the_page(self):
        token = self.sandbox.token()
        for number in range(5):
            self.sandbox.add_card(token, f"Card {number}")
        self.show()
        self.wait_for_text("Card 4")
        self.sandbox.control("reset")
        self.wait_for_text("Nothing has been exported yet")
        self.tab.wait("document.querySelectorAll('.card, .request').length === 0")
        self.sandbox.add_card(self.sandbox.token(), "After the reset")
        self.wait_for_text("After the reset")
        self.assertNothingRan()

    def test_a_fault_is_shown_at_its_request(self):
        self.sandbox.control("faults", host="api.trello.com", status=503)
        self.sandbox.send("GET", "api.trello.com", "/1/members/me")
        self.show()
        self.assertIn("503", self.tab.run("document.querySelector('.request .status.fault').textContent"))
        self.assertIn("Fault: ", self.tab.run("document.querySelector('.request .problem').textContent"))

    def test_a_long_title_is_cut_until_it_is_asked_for(self):
        self.sandbox.add_card(self.sandbox.token(), "long " * 2000)
        self.show()
        self.wait_for_text("Show all 10,000 characters")
        self.assertLess(self.tab.run("document.querySelector('.card').getBoundingClientRect().height"), 300)
        self.tab.run("document.querySelector('.card button').click()")
        self.assertGreater(self.tab.run("document.querySelector('.card h4').textContent.length"), 10_000)
        self.assertEqual(self.tab.run("document.activeElement.textContent"), "Show less")
