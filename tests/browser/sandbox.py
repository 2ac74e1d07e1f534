"""A running `zelto sandbox`, the commands that use it, and requests to the services that it stands in for."""

import base64
import html
import http.client
import json
import os
import re
import subprocess
import urllib.parse
import uuid

from chromium import DEADLINE, Failed

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CLIENT = "placeholder-id-of-Trello"
# What no document may hold.
CONTROLS = {number: None for number in [*range(9), 11, 12, *range(14, 32), 127]}
BORDER = "border-of-the-parts"
FILE_FORM = f"multipart/form-data; boundary={BORDER}"


def file_form(name, media_type, data, **texts):
    """The body of a form with a file and some texts."""
    parts = [f"--{BORDER}\r\nContent-Disposition: form-data; name=\"{key}\"\r\n\r\n{text}\r\n"
             for key, text in texts.items()]
    quoted = name.replace('"', "%22").replace("\r", "%0D").replace("\n", "%0A")
    parts.append(f"--{BORDER}\r\nContent-Disposition: form-data; name=\"file\"; filename=\"{quoted}\"\r\n"
                 f"Content-Type: {media_type}\r\n\r\n")
    return "".join(parts).encode() + data + f"\r\n--{BORDER}--\r\n".encode()


def notion_text(content, url=None, **annotations):
    """An item of a rich text."""
    return {"text": {"content": content, "link": {"url": url} if url else None}, "annotations": annotations}


def notion_block(kind, *items, **members):
    return {"type": kind, kind: {"rich_text": list(items), **members}}


class Sandbox:
    def __init__(self, program, folder, port=0):
        self.program = program
        self.folder = folder
        os.makedirs(folder, exist_ok=True)
        self.errors = open(os.path.join(folder, "sandbox.log"), "ab")
        self.process = subprocess.Popen([program, "sandbox", "--port", str(port), "--quiet"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self.errors)
        line = self.process.stdout.readline().decode()
        address = re.search(r"http://127\.0\.0\.1:(\d+)", line)
        if not address:
            raise Failed(f"zelto sandbox says {line!r} and not its address")
        self.url = address[0]
        self.port = int(address[1])

    def close(self):
        self.process.terminate()
        self.process.wait(DEADLINE)
        self.process.stdin.close()
        self.process.stdout.close()
        self.errors.close()

    def command(self, *arguments):
        return [self.program, *arguments, "--sandbox", self.url, "--data-dir", os.path.join(self.folder, "data"),
                "--keychain", "file"]

    def zelto(self, *arguments):
        done = subprocess.run(self.command(*arguments), stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
        if done.returncode != 0:
            raise Failed(f"zelto {arguments} ended with status {done.returncode}: {done.stdout} {done.stderr}")
        return done.stdout.decode()

    def send(self, method, host, target, body=None, **fields):
        """A request to a service; `fields` are headers."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=DEADLINE)
        names = {name.replace("_", "-"): value for name, value in fields.items()}
        connection.request(method, target, body, {"Host": host, **names})
        response = connection.getresponse()
        data = response.read()
        connection.close()
        return response.status, data

    def ask(self, method, host, target, body=None, **fields):
        """The JSON of a response that must be a success."""
        status, data = self.send(method, host, target, body, **fields)
        if status not in (200, 201):
            raise Failed(f"{method} {host}{target[:200]}: {status} {data[:500]!r}")
        return json.loads(data)

    def trello(self, method, path, token, body=None, query=(), **fields):
        items = [*query, ("key", CLIENT), ("token", token)]
        return self.ask(method, "api.trello.com", f"/1/{path}?{urllib.parse.urlencode(items)}", body, **fields)

    def control(self, path, **members):
        return self.send("POST", f"127.0.0.1:{self.port}", f"/control/{path}", json.dumps(members),
                         Content_Type="application/json", X_Zelto_Sandbox="test")

    def token(self, service="Trello"):
        """An access token, as after a sign-in."""
        return json.loads(self.control("tokens", service=service)[1])["accessToken"]

    def add_card(self, token, name, description=""):
        boards = self.trello("GET", "members/me/boards", token, query=[("fields", "id,name,closed,pinned"),
                             ("lists", "open"), ("list_fields", "id,name,closed,idBoard")])
        lists = next(board["lists"] for board in boards if board["lists"])
        items = [("idList", lists[0]["id"]), ("name", name), ("desc", description)]
        return self.trello("POST", "cards", token, query=items)["id"]

    def attach(self, token, card, name, media_type, data):
        return self.trello("POST", f"cards/{card}/attachments", token, file_form(name, media_type, data),
                           Content_Type=FILE_FORM)

    def asana(self, method, path, token, body=None, **fields):
        return self.ask(method, "app.asana.com", f"/api/1.0/{path}", body, Authorization=f"Bearer {token}", **fields)

    def add_asana_task(self, token, name, notes="", files=()):
        workspace = self.asana("GET", "workspaces", token)["data"][0]["gid"]
        project = self.asana("GET", f"workspaces/{workspace}/projects", token)["data"][0]["gid"]
        form = {"assignee": "me", "name": name, "notes": notes, "projects": project, "workspace": workspace}
        task = self.asana("POST", "tasks", token, urllib.parse.urlencode(form),
                          Content_Type="application/x-www-form-urlencoded")["data"]["gid"]
        for file in files:
            self.asana("POST", f"tasks/{task}/attachments", token, file_form(*file), Content_Type=FILE_FORM)

    def add_onenote_page(self, token, body, files=(), title="A page"):
        """A page with that body; its files are named "1", "2" and so on in it."""
        def onenote(method, path, content=None, **fields):
            return self.ask(method, "graph.microsoft.com", f"/v1.0/me/onenote/{path}", content,
                            Authorization=f"Bearer {token}", **fields)
        section = onenote("GET", "sections")["value"][0]["id"]
        names = [html.escape(name.translate(CONTROLS)) for name, _, _ in files]
        objects = "".join(f'<object data-attachment="{name}" data="name:{number}" type="text/plain" />'
                          for number, name in enumerate(names, 1))
        page = (f"<html><head><title>{html.escape(title.translate(CONTROLS))}</title></head>"
                f"<body>{body}{objects}</body></html>")
        parts = [("Presentation", "text/html", page.encode())]
        parts += [(str(number), media_type, data) for number, (_, media_type, data) in enumerate(files, 1)]
        form = b"".join(f"--{BORDER}\r\nContent-Disposition: form-data; name=\"{name}\"; filename=\"x\"\r\n"
                        f"Content-Type: {media_type}\r\n\r\n".encode() + data + b"\r\n"
                        for name, media_type, data in parts)
        return onenote("POST", f"sections/{section}/pages", form + f"--{BORDER}--\r\n".encode(),
                       Content_Type=FILE_FORM)["id"]

    def dropbox_upload(self, token, path, data):
        argument = json.dumps({"path": path, "mode": "overwrite", "autorename": False, "mute": False})
        return self.ask("POST", "content.dropboxapi.com", "/2/files/upload", data, Authorization=f"Bearer {token}",
                        Content_Type="application/octet-stream", Dropbox_API_Arg=argument)["id"]

    def drive_files(self, token, query):
        target = "/drive/v3/files?" + urllib.parse.urlencode({"q": query})
        return self.ask("GET", "www.googleapis.com", target, Authorization=f"Bearer {token}")["files"]

    def drive_upload(self, token, name, media_type, data, folder="root"):
        metadata = json.dumps({"name": name, "mimeType": media_type, "parents": [folder]})
        body = (f"\r\n--{BORDER}\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n{metadata}"
                f"\r\n--{BORDER}\r\nContent-Type: {media_type}\r\nContent-Transfer-Encoding: base64\r\n\r\n"
                f"{base64.b64encode(data).decode()}\r\n--{BORDER}--")
        return self.ask("POST", "www.googleapis.com", "/upload/drive/v3/files?uploadType=multipart", body.encode(),
                        Authorization=f"Bearer {token}", Content_Type=f"multipart/related; boundary={BORDER}")["id"]

    def zoom(self, method, path, token, body=None):
        """The JSON of a response, or nothing where it has no body."""
        status, data = self.send(method, "api.zoom.us", f"/v2/{path}", json.dumps(body), Authorization=f"Bearer {token}",
                                 Content_Type="application/json")
        if status not in (201, 204):
            raise Failed(f"{method} {path}: {status} {data!r}")
        return json.loads(data) if data else None

    def add_zoom_meeting(self, token, topic, type=2):
        times = {"start_time": "2026-12-24T12:00:00Z", "duration": 45} if type == 2 else {}
        return self.zoom("POST", "users/me/meetings", token, {"topic": topic, "type": type, **times})

    def add_goto_meeting(self, token, subject):
        body = {"subject": subject, "conferencecallinfo": "VoIP", "meetingtype": "scheduled", "passwordrequired": True,
                "starttime": "2026-12-24T12:00:00Z", "endtime": "2026-12-24T12:45:00Z", "timezonekey": ""}
        return self.ask("POST", "api.getgo.com", "/G2M/rest/meetings", json.dumps(body), Authorization=f"Bearer {token}",
                        Content_Type="application/json")[0]

    def teams(self, method, path, token, body):
        return self.ask(method, "graph.microsoft.com", f"/v1.0/me/onlineMeetings{path and '/' + path}", json.dumps(body),
                        Authorization=f"Bearer {token}", Content_Type="application/json")

    def add_teams_meeting(self, token, subject):
        return self.teams("POST", "", token, {"subject": subject, "startDateTime": "2026-12-24T12:00:00Z",
                                              "endDateTime": "2026-12-24T12:45:00Z"})

    def todoist(self, path, token, body, media_type="application/json"):
        return self.ask("POST", "api.todoist.com", f"/api/v1/{path}", body, Authorization=f"Bearer {token}",
                        Content_Type=media_type)

    def add_todoist_task(self, token, content, text="", files=(), due=None):
        notes = [{"content": text}] if text else []
        for file in files:
            upload = self.todoist("uploads", token, file_form(*file, file_name=file[0]), FILE_FORM)
            notes.append({"content": "", "file_attachment": upload})
        item = {"content": content, **({"due": {"date": due}} if due else {})}
        first = str(uuid.uuid4())
        commands = [{"type": "item_add", "uuid": str(uuid.uuid4()), "temp_id": first, "args": item}]
        commands += [{"type": "note_add", "uuid": str(uuid.uuid4()), "temp_id": str(uuid.uuid4()),
                      "args": {"temp_id": first, **note}} for note in notes]
        statuses = self.todoist("sync", token, json.dumps({"commands": commands}))["sync_status"]
        if set(statuses.values()) != {"ok"}:
            raise Failed(f"sync: {statuses}")

    def notion(self, path, token, body):
        return self.ask("POST", "api.notion.com", f"/v1/{path}", json.dumps(body), Authorization=f"Bearer {token}",
                        Content_Type="application/json", Notion_Version="2022-06-28")

    def add_notion_page(self, token, title, blocks=(), database=0):
        """`title` is a text; blocks are in Notion's JSON."""
        found = self.notion("search", token, {"filter": {"property": "object", "value": "database"}})["results"]
        return self.notion("pages", token, {"parent": {"database_id": found[database]["id"]},
                                            "properties": {"title": {"title": [notion_text(title)]}},
                                            "children": list(blocks)})["id"]

    def slack(self, method, token, body=None):
        """A call by GET, or by POST with a JSON object."""
        fields = {"Content_Type": "application/json; charset=utf-8"} if body is not None else {}
        response = self.ask("POST" if body is not None else "GET", "slack.com", f"/api/{method}",
                            json.dumps(body) if body is not None else None, Authorization=f"Bearer {token}", **fields)
        if not response["ok"]:
            raise Failed(f"{method}: {response}")
        return response

    def add_slack_message(self, token, text, channel="C0SANDBOX01"):
        return self.slack("chat.postMessage", token, {"channel": channel, "text": text})["ts"]

    def hubspot(self, method, path, token, body=None):
        return self.ask(method, "api.hubapi.com", f"/{path}", None if body is None else json.dumps(body),
                        Authorization=f"Bearer {token}", Content_Type="application/json")

    def hubspot_contact(self, token, email, **properties):
        """The identifier of a contact with that address, which is created if there is none."""
        target = f"/crm/v3/objects/contacts/{urllib.parse.quote(email, safe='')}?idProperty=email"
        status, data = self.send("GET", "api.hubapi.com", target, Authorization=f"Bearer {token}")
        if status == 200:
            return json.loads(data)["id"]
        return self.hubspot("POST", "crm/v3/objects/contacts", token, {"properties": {"email": email, **properties}})["id"]

    def log_in_hubspot(self, token, kind, contacts=(), **properties):
        """`kind` is "emails", "notes" or "meetings", contacts are identifiers; a date of 2026 unless there is one."""
        number = {"emails": 198, "notes": 202, "meetings": 200}[kind]
        types = [{"associationCategory": "HUBSPOT_DEFINED", "associationTypeId": number}]
        return self.hubspot("POST", f"crm/v3/objects/{kind}", token, {
            "properties": {"hs_timestamp": "2026-12-24T09:00:00Z", **properties},
            "associations": [{"to": {"id": contact}, "types": types} for contact in contacts]})["id"]
