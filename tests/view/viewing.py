"""The running view, as tests and trials start it."""

import json
import os
import signal
import subprocess
import time
import urllib.request

VANTOREL = os.environ.get("VANTOREL_COMMAND", "vantorel")


def vantorel(folder, *arguments):
    subprocess.run([VANTOREL, *map(str, arguments)], cwd=folder, check=True)


def pixels(path):
    """A picture's pixels as 8-bit RGBA."""
    return subprocess.run(["ffmpeg", "-v", "error", "-i", str(path), "-f", "rawvideo", "-pix_fmt", "rgba", "-"],
                          check=True, capture_output=True).stdout


class View:
    def __init__(self, folder, *arguments):
        self.began = time.time()
        self.process = subprocess.Popen([VANTOREL, "view", *map(str, arguments), "--no-browser"], cwd=folder,
                                        stdout=subprocess.PIPE, text=True)
        self.address = self.process.stdout.readline().strip()
        self.told = time.time()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    def post(self, path, body):
        request = urllib.request.Request(self.address + "api/" + path, json.dumps(body).encode(), method="POST")
        with urllib.request.urlopen(request, timeout=60) as answer:
            return answer.read()

    def get(self, path):
        with urllib.request.urlopen(self.address + "api/" + path, timeout=60) as answer:
            return answer.read()

    def resident_kib(self):
        with open(f"/proc/{self.process.pid}/status") as status:
            return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))

    def end(self):
        """Ends it as Ctrl-C does and returns its exit code."""
        self.process.send_signal(signal.SIGINT)
        return self.process.wait(20)
