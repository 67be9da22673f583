"""What the view's server does with requests that are not its page's, malformed, too large or too slow.

check_http.py FOLDER; VANTOREL_COMMAND is the command.
"""

import json
import pathlib
import shutil
import socket
import sys
import threading
import time
import urllib.parse

from viewing import View, vantorel


class Server:
    def __init__(self, view):
        parts = urllib.parse.urlsplit(view.address)
        self.port, self.prefix = parts.port, parts.path
        self.host = f"127.0.0.1:{self.port}"

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.port), timeout=20)

    def send(self, data):
        """The status of the answer to these bytes; 0 where there is none."""
        with self.connect() as connection:
            try:
                connection.sendall(data)
            except OSError:
                pass  # it has answered and closed before all was sent
            return self.status(connection)

    @staticmethod
    def status(connection):
        answer = b""
        try:
            while b"\r\n" not in answer and (more := connection.recv(4096)):
                answer += more
        except OSError:
            pass
        return int(answer.split()[1]) if answer else 0

    def request(self, path, method="GET", body=b"", **headers):
        lines = {"Host": self.host, "Connection": "close"} | {k.replace("_", "-"): v for k, v in headers.items()}
        if method == "POST":
            lines.setdefault("Content-Length", str(len(body)))
        head = f"{method} {path} HTTP/1.1\r\n" + "".join(f"{k}: {v}\r\n" for k, v in lines.items() if v is not None)
        return self.send(head.encode() + b"\r\n" + body)

    def is_well(self):
        """Whether an honest request is answered, and before several rounds of others have run out of their time."""
        begin = time.monotonic()
        return self.request(self.prefix) == 200 and time.monotonic() - begin < 10


def check_strangers(server):
    own = server.prefix
    cases = [
        ("the page", own, {}, 200),
        ("through a tunnel", own, {"Host": "localhost:8080"}, 200),
        ("its own origin", own, {"Origin": "http://" + server.host}, 200),
        ("no token", "/", {}, 403),
        ("a wrong token", "/" + "0" * 64 + "/", {}, 403),
        ("part of the token", own[:-2] + "/", {}, 403),
        ("a name for this address", own, {"Host": f"rebound.example:{server.port}"}, 403),
        ("no host", own, {"Host": None}, 403),
        ("a host that begins like ours", own, {"Host": "127.0.0.1.example"}, 403),
        ("another origin", own, {"Origin": "http://other.example"}, 403),
        ("an origin of no page", own, {"Origin": "null"}, 403),
        ("from another site", own, {"Sec_Fetch_Site": "cross-site"}, 403),
        ("a parent folder", own + "../../etc/passwd", {}, 404),
        ("an escaped one", own + "%2e%2e/%2e%2e/etc/passwd", {}, 404),
        ("an absolute path", own + "/etc/passwd", {}, 404),
        ("a file of the folder", own + "layer.png", {}, 404),
        ("a body of 100 GB", own + "api/save", {"method": "POST", "Content_Length": "100000000000"}, 413),
        ("a length of letters", own + "api/save", {"method": "POST", "Content_Length": "many"}, 400),
        ("a chunked body", own + "api/save", {"method": "POST", "Content_Length": None, "Transfer_Encoding": "chunked"}, 411),
        ("an address of 20 kB", own + "x" * 20000, {}, 414),
        ("another method", own, {"method": "DELETE"}, 405),
    ]
    for name, path, options, wanted in cases:
        status = server.request(path, **options)
        assert status == wanted, f"{name}: {status} instead of {wanted}"
    for garbage in (b"\r\n\r\n", b"\x16\x03\x01\x02\x00\x01" * 50, b"GET\r\n\r\n", b"\0" * 10000, b"A" * 200000):
        status = server.send(garbage)
        assert status in (0, 400, 403, 414), (garbage[:10], status)
    assert server.is_well()


def check_bodies(server):
    api = server.prefix + "api/"
    corners = [10, 10, 50, 10, 10, 40, 50, 40]
    draft = {"frame": 0, "corners": corners, "n": 1, "region": [0, 0, 64, 48]}
    picture = {"frame": 0, "track": {"interpolation": "linear", "keys": [[0] + corners]}, "n": 1, "region": [0, 0, 64, 48]}
    assert server.request(api + "draft", "POST", json.dumps(draft).encode()) == 200
    assert server.request(api + "picture", "POST", json.dumps(picture).encode()) == 200
    wrong = [("draft", draft, change) for change in (
        {"frame": "1"}, {"frame": 1e300}, {"frame": 0.5}, {"corners": corners[:7]}, {"corners": [1e9] * 8},
        {"corners": [None] * 8}, {"corners": {}}, {"n": 0}, {"n": 1e6}, {"region": [0, 0, 0, 0]},
        {"region": [50, 0, 10, 48]}, {"region": [1e12] * 4}, {"region": "all"})]
    wrong += [("picture", picture, {"track": track}) for track in (
        None, {}, {"interpolation": "linear", "keys": []}, {"interpolation": "fast", "keys": [[0] + corners]},
        {"interpolation": "linear", "keys": [[0] + corners, [0] + corners]},
        {"interpolation": "linear", "keys": [[0] + corners[:7] + [40000]]},
        {"interpolation": "linear", "keys": [["0"] + corners]}, {"interpolation": ["linear"], "keys": [[0] + corners]})]
    for path, body, change in wrong:
        status = server.request(api + path, "POST", json.dumps(body | change).encode())
        assert status == 422, (path, change, status)
    for body in (b"", b"[]", b"null", b"{", b"\xff\xfe", b'{"frame": NaN}', b"[" * 1000000, b'{"a":' * 100000):
        assert server.request(api + "draft", "POST", body) == 422, body[:20]
    assert server.request(api + "draft", "POST", b"x" * (8 << 20)) == 422
    # Told before the body is sent; a client that sends all the same may find the connection closed.
    assert server.request(api + "draft", "POST", b"x" * 10_000_000) in (0, 413)
    assert server.is_well()


def check_crowds(server):
    """Silent and slow clients keep nobody out, and a request has a time to be sent in."""
    silent = [server.connect() for _ in range(200)]
    for connection in silent[::2]:
        connection.sendall(b"GET " + server.prefix.encode())
    assert server.is_well(), "200 silent clients keep others out"
    slow = [server.connect() for _ in range(24)]
    ended = threading.Event()

    def drip():
        while not ended.wait(0.2):
            for connection in slow:
                try:
                    connection.sendall(b"G")
                except OSError:
                    pass

    dripping = threading.Thread(target=drip)
    dripping.start()
    try:
        for _ in range(10):
            assert server.is_well(), "24 clients that send a byte at a time keep others out"
        begin = time.monotonic()
        slow[-1].settimeout(15)
        try:
            while slow[-1].recv(4096):
                pass
        except ConnectionError:
            pass
        assert time.monotonic() - begin < 14, "a client may take as long as it likes for a request"
    finally:
        ended.set()
        dripping.join()
    for connection in silent + slow:
        connection.close()
    assert server.is_well()


def main():
    folder = pathlib.Path(sys.argv[1]).absolute()
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    vantorel(folder, "testcard", "-o", "layer.png", "--size", "64x48")
    with View(folder, "layer.png") as view:
        server = Server(view)
        check_strangers(server)
        check_bodies(server)
        check_crowds(server)
        waiting = server.connect()
        assert view.end() == 0
        waiting.close()
    assert sorted(path.name for path in folder.iterdir()) == ["layer.png"]


main()
