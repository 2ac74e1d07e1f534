"""Drives Debian's headless Chromium over its debugging pipe, and records what its tabs request and log."""

import base64
import json
import os
import shutil
import socketserver
import subprocess
import threading
import time

DEADLINE = 30  # seconds for anything that a test waits for


class Failed(Exception):
    pass


class NoDocument(Failed):
    """A tab is between two pages."""


def wait_for(what, condition):
    """The first true value of the condition."""
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    raise Failed(f"waited {DEADLINE} s for {what}")


class Trap(socketserver.ThreadingTCPServer):
    """The browser's proxy for all addresses but 127.0.0.1. It never responds, and records the calls."""

    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), None)
        self.calls = []
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def finish_request(self, request, client_address):
        call = request.recv(4096)
        if call:  # not a connection that is opened in case one will be needed
            self.calls.append(call.split(b"\r\n")[0].decode("latin-1"))


class Tab:
    """A tab that Chromium has, whoever opened it."""

    def __init__(self, browser, session, target):
        self.browser = browser
        self.session = session
        self.target = target
        self.requests = {}  # by the browser's identifier
        self.responses = {}
        self.finished = set()
        self.stream = []  # data of event streams
        self.said = []  # to the console, exceptions, dialogs, violations of a policy

    def send(self, method, **parameters):
        return self.browser.send(method, parameters, self.session)

    def handle(self, method, parameters):
        if method == "Network.requestWillBeSent":
            self.requests[parameters["requestId"]] = parameters["request"]["url"]
        elif method == "Network.responseReceived":
            self.responses[parameters["requestId"]] = parameters["response"]
        elif method == "Network.loadingFinished":
            self.finished.add(parameters["requestId"])
        elif method == "Network.eventSourceMessageReceived":
            self.stream.append(parameters["data"])
        elif method == "Page.javascriptDialogOpening":
            self.said.append(f"dialog: {parameters['message']}")
            self.browser.post("Page.handleJavaScriptDialog", {"accept": False}, self.session)
        elif method == "Runtime.consoleAPICalled":
            self.said.append("console: " + " ".join(str(each.get("value")) for each in parameters["args"]))
        elif method == "Runtime.exceptionThrown":
            self.said.append("exception: " + json.dumps(parameters["exceptionDetails"]))
        elif method == "Log.entryAdded":
            self.said.append(f"log: {parameters['entry']['text']} {parameters['entry'].get('url', '')}")

    def open(self, url):
        self.send("Page.navigate", url=url)
        self.wait("document.readyState === 'complete'")

    def run(self, script):
        result = self.send("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise Failed(f"{script}: {json.dumps(result['exceptionDetails'])}")
        return result["result"].get("value")

    def wait(self, script):
        def holds():
            try:
                return self.run(script)
            except NoDocument:
                return None

        try:
            return wait_for(script, holds)
        except Failed as problem:
            raise Failed(f"{problem}; the page shows: {self.run('document.body?.innerText.slice(0, 2000)')}") from None

    def click(self, script):
        """Presses the middle of the element that the script gives, as a mouse does."""
        x, y = self.run(f"(() => {{ const e = {script}; e.scrollIntoView({{block: 'center'}}); "
                        "const r = e.getClientRects()[0]; return [r.x + r.width / 2, r.y + r.height / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.send("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def bodies(self):
        """The body of every response that was read to its end."""
        bodies = {}
        for request in list(self.finished):
            try:
                body = self.send("Network.getResponseBody", requestId=request)
            except Failed:  # of a page that the tab has left
                continue
            data = base64.b64decode(body["body"]) if body["base64Encoded"] else body["body"].encode()
            bodies[self.requests.get(request, request)] = data
        return bodies

    def resize(self, width, height):
        self.send("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def picture(self, path, width, height, dark=False):
        self.send("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.resize(width, height)
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.send("Page.captureScreenshot")["data"]))


class Chromium:
    def __init__(self, folder):
        """It reaches 127.0.0.1 alone; all other addresses lead to the trap."""
        program = shutil.which("chromium")
        if not program:
            raise Failed("chromium is missing; scripts/setup test installs it")
        self.trap = Trap()
        self.tabs = []
        self.responses = {}
        self.arrived = threading.Condition()
        self.last = 0
        commands, self.write_end = os.pipe()
        self.read_end, events = os.pipe()
        options = ["--headless=new", "--remote-debugging-pipe", f"--user-data-dir={folder}/chromium", "--no-first-run",
                   "--no-default-browser-check", "--disable-gpu", "--disable-dev-shm-usage", "--mute-audio",
                   "--disable-background-networking", "--disable-component-update", "--disable-sync",
                   "--disable-default-apps", "--disable-extensions", "--password-store=basic", "--lang=en",
                   f"--proxy-server=http://127.0.0.1:{self.trap.server_address[1]}",
                   "--proxy-bypass-list=<-loopback>;127.0.0.1"]
        if os.geteuid() == 0:
            options.append("--no-sandbox")
        self.log = open(os.path.join(folder, "chromium.log"), "wb")
        # The pipe's descriptors must be 3 and 4.
        self.process = subprocess.Popen(["bash", "-c", f'exec "$@" 3<&{commands} 4>&{events}', "bash", program,
                                         *options, "about:blank"], pass_fds=(commands, events),
                                        stdin=subprocess.DEVNULL, stdout=self.log, stderr=subprocess.STDOUT)
        os.close(commands)
        os.close(events)
        threading.Thread(target=self._read, daemon=True).start()
        self.send("Target.setAutoAttach", {"autoAttach": True, "waitForDebuggerOnStart": True, "flatten": True})
        wait_for("the first tab", lambda: self.tabs)

    def post(self, method, parameters, session=None):
        with self.arrived:
            self.last += 1
            message = {"id": self.last, "method": method, "params": parameters}
            if session:
                message["sessionId"] = session
            os.write(self.write_end, json.dumps(message).encode() + b"\0")
            return self.last

    def send(self, method, parameters, session=None):
        number = self.post(method, parameters, session)
        with self.arrived:
            if not self.arrived.wait_for(lambda: number in self.responses, DEADLINE):
                raise Failed(f"Chromium does not respond to {method}")
            response = self.responses.pop(number)
        if "error" in response:
            text = response["error"]["message"]
            kind = NoDocument if "execution context" in text.lower() or "target navigated" in text else Failed
            raise kind(f"{method}: {text}")
        return response["result"]

    def _read(self):
        with os.fdopen(self.read_end, "rb") as pipe:
            rest = b""
            while data := pipe.read1(1 << 20):
                *messages, rest = (rest + data).split(b"\0")
                for message in messages:
                    self._take(json.loads(message))

    def _take(self, message):
        if "id" in message:
            with self.arrived:
                self.responses[message["id"]] = message
                self.arrived.notify_all()
            return
        parameters = message["params"]
        if message["method"] == "Target.attachedToTarget":
            self._attach(parameters["sessionId"], parameters["targetInfo"])
            return
        if message["method"] == "Target.detachedFromTarget":
            self.tabs = [tab for tab in self.tabs if tab.session != parameters["sessionId"]]
            return
        for tab in self.tabs:
            if tab.session == message.get("sessionId"):
                tab.handle(message["method"], parameters)

    def _attach(self, session, target):
        if target["type"] == "page":
            self.tabs.append(Tab(self, session, target["targetId"]))
            for domain in ("Page", "Runtime", "Network", "Log"):
                self.post(f"{domain}.enable", {}, session)
        # What it opens or contains (Chromium's viewer of PDF files) waits for this too.
        self.post("Target.setAutoAttach", {"autoAttach": True, "waitForDebuggerOnStart": False, "flatten": True},
                  session)
        self.post("Runtime.runIfWaitingForDebugger", {}, session)

    def new_tab(self):
        target = self.send("Target.createTarget", {"url": "about:blank"})["targetId"]
        return wait_for("a new tab", lambda: next((tab for tab in self.tabs if tab.target == target), None))

    def tab_opened_by(self, action):
        """The tab that an action opens."""
        known = len(self.tabs)
        action()
        wait_for("a tab to open", lambda: len(self.tabs) > known)
        return self.tabs[known]

    def close_tabs(self):
        """All but the first, without which Chromium would end."""
        for tab in self.tabs[1:]:
            self.post("Target.closeTarget", {"targetId": tab.target})
        wait_for("the tabs to close", lambda: len(self.tabs) == 1)
        self.trap.calls.clear()

    def close(self):
        try:
            self.post("Browser.close", {})
            self.process.wait(DEADLINE)
        except (OSError, subprocess.TimeoutExpired):
            self.process.kill()
            self.process.wait()
        os.close(self.write_end)
        self.trap.shutdown()
        self.trap.server_close()
        self.log.close()
