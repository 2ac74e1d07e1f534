"""A running `zelto sandbox`, the commands that use it, and requests to the services that it stands for."""

import http.client
import json
import os
import re
import subprocess
import urllib.parse

from chromium import DEADLINE, Failed

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
CLIENT = "placeholder-id-of-Trello"


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
            raise Failed(f"zelto sandbox says {line!r} and not where it is")
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
        answer = connection.getresponse()
        data = answer.read()
        connection.close()
        return answer.status, data

    def ask(self, method, host, target, body=None, **fields):
        """The JSON of an answer that must be a good one."""
        status, data = self.send(method, host, target, body, **fields)
        if status != 200:
            raise Failed(f"{method} {host}{target[:200]}: {status} {data[:500]!r}")
        return json.loads(data)

    def trello(self, method, path, token, body=None, query=(), **fields):
        items = [*query, ("key", CLIENT), ("token", token)]
        return self.ask(method, "api.trello.com", f"/1/{path}?{urllib.parse.urlencode(items)}", body, **fields)

    def control(self, path, **members):
        return self.send("POST", f"127.0.0.1:{self.port}", f"/control/{path}", json.dumps(members),
                         Content_Type="application/json", X_Zelto_Sandbox="test")

    def token(self):
        """An access token for Trello, as a finished sign-in leaves it."""
        return json.loads(self.control("tokens", service="Trello")[1])["accessToken"]

    def add_card(self, token, name, description=""):
        boards = self.trello("GET", "members/me/boards", token, query=[("fields", "id,name,closed,pinned"),
                             ("lists", "open"), ("list_fields", "id,name,closed,idBoard")])
        lists = next(board["lists"] for board in boards if board["lists"])
        items = [("idList", lists[0]["id"]), ("name", name), ("desc", description)]
        return self.trello("POST", "cards", token, query=items)["id"]

    def attach(self, token, card, name, media_type, data):
        border = "border-of-the-parts"
        quoted = name.replace('"', "%22").replace("\r", "%0D").replace("\n", "%0A")
        head = (f"--{border}\r\nContent-Disposition: form-data; name=\"file\"; filename=\"{quoted}\"\r\n"
                f"Content-Type: {media_type}\r\n\r\n")
        body = head.encode() + data + f"\r\n--{border}--\r\n".encode()
        return self.trello("POST", f"cards/{card}/attachments", token, body,
                           Content_Type=f"multipart/form-data; boundary={border}")
