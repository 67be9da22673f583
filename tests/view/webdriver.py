"""A small client of the WebDriver protocol: for chromedriver, and for Firefox itself."""

import base64
import json
import pathlib
import re
import shutil
import socket
import subprocess
import time
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
KEYS = {"ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014", "ArrowDown": "\ue015", "Shift": "\ue008",
        "Control": "\ue009", "Alt": "\ue00a", "Tab": "\ue004", "Enter": "\ue007", "Delete": "\ue017",
        "PageUp": "\ue00e", "PageDown": "\ue00f", "Escape": "\ue00c"}


def missing():
    """The name of a program that is not installed, or None."""
    return next((name for name in ("chromium", "chromedriver") if shutil.which(name) is None), None)


class Browser:
    """A headless Chromium with one page. Coordinates are CSS pixels of its window."""

    PATIENCE = 300  # seconds for an answer: the machine may be stopped for a while

    def __init__(self, width=1600, height=900):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            if found := re.search(r"successfully on port (\d+)", line):
                self.base = f"http://127.0.0.1:{found[1]}/session"
                break
        arguments = ["--headless=new", "--no-sandbox", "--disable-gpu", "--force-device-scale-factor=1",
                     f"--window-size={width},{height}", "--hide-scrollbars", "--disable-dev-shm-usage",
                     "--disable-hang-monitor", "--disable-gpu-watchdog"]
        options = {"browserName": "chrome", "goog:loggingPrefs": {"browser": "ALL"},
                   "goog:chromeOptions": {"binary": shutil.which("chromium"), "args": arguments}}
        self.base += "/" + self.call("POST", "", {"capabilities": {"alwaysMatch": options}})["sessionId"]
        self.call("POST", "/timeouts", {"script": 1000 * self.PATIENCE, "pageLoad": 1000 * self.PATIENCE})

    def call(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=self.PATIENCE) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(json.load(error)["value"]["message"]) from None

    def open(self, address):
        self.call("POST", "/url", {"url": address})

    def run(self, script, *arguments):
        """The value of a script's body; a promise's value."""
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def wait(self, script, *arguments):
        """Waits until the script's body gives something true, and returns it."""
        for _ in range(400):
            if value := self.run(script, *arguments):
                return value
            self.run("return new Promise(done => setTimeout(done, 50))")
        raise AssertionError("waited in vain for: " + script)

    def find(self, selector):
        return self.call("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self.call("POST", f"/element/{self.find(selector)}/click", {})

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent.trim()", selector)

    def value(self, selector):
        return self.run("return document.querySelector(arguments[0]).value", selector)

    def type(self, selector, text):
        """Replaces a field's text and leaves the field by Enter."""
        element = self.find(selector)
        self.run("document.querySelector(arguments[0]).select()", selector)
        self.call("POST", f"/element/{element}/value", {"text": text + KEYS["Enter"]})

    def act(self, kind, steps):
        source = {"type": kind, "id": kind, "actions": steps}
        if kind == "pointer":
            source["parameters"] = {"pointerType": "mouse"}
        self.call("POST", "/actions", {"actions": [source]})

    def touch(self, *fingers):
        """Fingers that go along lists of points at the same time, and then leave."""
        sources = []
        for name, points in enumerate(fingers):
            steps = [{"type": "pointerMove", "x": round(x), "y": round(y), "duration": 20 if i else 0}
                     for i, (x, y) in enumerate(points)]
            steps.insert(1, {"type": "pointerDown", "button": 0})
            sources.append({"type": "pointer", "id": f"finger {name}", "parameters": {"pointerType": "touch"},
                            "actions": steps + [{"type": "pointerUp", "button": 0}]})
        self.call("POST", "/actions", {"actions": sources})

    def press(self, *keys):
        """Keys together: press("Control", "z")."""
        values = [KEYS.get(key, key) for key in keys]
        self.act("key", [{"type": "keyDown", "value": v} for v in values] +
                 [{"type": "keyUp", "value": v} for v in reversed(values)])

    def click_at(self, x, y):
        self.drag([(x, y)])

    def drag(self, points, step=0):
        """Presses at the first point and lets go at the last; `step` is milliseconds a move."""
        steps = [{"type": "pointerMove", "x": round(x), "y": round(y), "duration": step if i else 0}
                 for i, (x, y) in enumerate(points)]
        steps.insert(1, {"type": "pointerDown", "button": 0})
        self.act("pointer", steps + [{"type": "pointerUp", "button": 0}])

    def screenshot(self, path):
        pathlib.Path(path).write_bytes(base64.b64decode(self.call("GET", "/screenshot")))

    def complaints(self):
        """What the browser's console says of faults."""
        return [entry["message"] for entry in self.call("POST", "/se/log", {"type": "browser"})
                if entry["level"] in ("SEVERE", "WARNING")]

    def close(self):
        try:
            self.call("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()


class Firefox(Browser):
    """The same with a headless Firefox, through its own remote protocol, which carries the same commands."""

    COMMANDS = {("POST", "/url"): "WebDriver:Navigate", ("POST", "/execute/sync"): "WebDriver:ExecuteScript",
                ("POST", "/element"): "WebDriver:FindElement", ("POST", "/actions"): "WebDriver:PerformActions",
                ("GET", "/screenshot"): "WebDriver:TakeScreenshot"}
    PORT = 2828

    def __init__(self, profile, width=1600, height=900):
        profile = pathlib.Path(profile)
        profile.mkdir(parents=True, exist_ok=True)
        (profile / "user.js").write_text(f'user_pref("marionette.port", {self.PORT});\n')
        self.driver = subprocess.Popen(["firefox-esr", "--headless", "--marionette", "--profile", str(profile),
                                        f"--width={width}", f"--height={height}"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for _ in range(300):
            try:
                self.socket = socket.create_connection(("127.0.0.1", self.PORT), timeout=60)
                break
            except ConnectionRefusedError:
                time.sleep(0.2)
        self.receive()
        self.count = 0
        self.send("WebDriver:NewSession", {"capabilities": {"alwaysMatch": {}}})

    def receive(self):
        head = b""
        while not head.endswith(b":"):
            head += self.socket.recv(1)
        data = b""
        while len(data) < int(head[:-1]):
            data += self.socket.recv(int(head[:-1]) - len(data))
        return json.loads(data)

    def send(self, command, parameters):
        self.count += 1
        message = json.dumps([0, self.count, command, parameters]).encode()
        self.socket.sendall(str(len(message)).encode() + b":" + message)
        _, _, error, result = self.receive()
        if error:
            raise AssertionError(error["message"])
        return result.get("value", result) if isinstance(result, dict) else result

    def call(self, method, path, body=None):
        parts = path.split("/")
        if len(parts) == 4 and parts[1] == "element":
            name = {"click": "WebDriver:ElementClick", "value": "WebDriver:ElementSendKeys"}[parts[3]]
            return self.send(name, {"id": parts[2], **body})
        return self.send(self.COMMANDS[method, path], body or {})

    def complaints(self):
        return []  # its protocol does not tell

    def close(self):
        try:
            self.send("Marionette:Quit", {"flags": ["eForceQuit"]})
        except (AssertionError, OSError, IndexError, ValueError):
            pass
        self.socket.close()
        self.driver.terminate()
        self.driver.wait()
