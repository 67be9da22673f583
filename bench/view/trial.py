"""Trials of the page that take too long for the tests, or need what they do without.

trial.py measure FOLDER            how long a drag takes to be drawn, full quality, and the first picture
trial.py monkey FOLDER [SECONDS [SEED]]   random acts, with memory and faults watched
trial.py audit FOLDER AXE          accessibility by axe-core, whose axe.min.js is AXE
trial.py pictures FOLDER           the guide's pictures, by the layer and the plates of docs/images
VANTOREL_COMMAND is the command.
"""

import os
import pathlib
import random
import statistics
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "view"))
import webdriver
from viewing import View, vantorel


def ready(browser, view):
    browser.open(view.address)
    browser.wait("return document.documentElement.dataset.ready")


def centre_of(browser, x, y, width, height):
    """Where a place of a fitted picture of that size is on screen."""
    box = browser.run("const b = document.querySelector('#stage').getBoundingClientRect();"
                      "return [b.left, b.top, b.width, b.height]")
    zoom = 0.94 * min(box[2] / width, box[3] / height)
    return box[0] + box[2] / 2 + (x - width / 2) * zoom, box[1] + box[3] / 2 + (y - height / 2) * zoom


def processor_seconds(process):
    """What a process and those below it have used."""
    ticks, parents = {}, {}
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            fields = stat.read_text().rpartition(")")[2].split()
        except OSError:
            continue  # it has ended
        pid = int(stat.parent.name)
        parents[pid], ticks[pid] = int(fields[1]), int(fields[11]) + int(fields[12])

    def is_below(pid):
        return pid == process.pid or (pid in parents and is_below(parents[pid]))

    return sum(count for pid, count in ticks.items() if is_below(pid)) / os.sysconf("SC_CLK_TCK")


def first_picture(browser, view):
    """When the first picture was drawn, in milliseconds since the server's start, and what happened before."""
    origin, shot, asked, answered, drawn = browser.run(
        "const e = name => performance.getEntriesByType('resource').find(r => r.name.endsWith(name));"
        "const pictures = [e('api/backdrop'), e('api/draft')];"
        "return [performance.timeOrigin, e('api/shot').responseEnd, Math.min(...pictures.map(r => r.requestStart)),"
        "Math.max(...pictures.map(r => r.responseEnd)), performance.getEntriesByName('first picture')[0].startTime]")
    page = origin - 1e3 * view.began
    return (f"first picture {page + drawn:.0f} ms after the server's start (address printed {1e3 * (view.told - view.began):.0f}, "
            f"page begun {page:.0f}, shot known {page + shot:.0f}, pictures asked for {page + asked:.0f}, "
            f"answered {page + answered:.0f})")


def full_quality(browser, places):
    """Lets the corner go at each place, and gives the milliseconds until its picture in full quality is drawn."""
    times = []
    for x, y in places:
        browser.run("performance.clearMeasures('let go to full quality')")
        browser.act("pointer", [{"type": "pointerMove", "x": round(x), "y": round(y), "duration": 50},
                                {"type": "pause", "duration": 100}, {"type": "pointerUp", "button": 0}])
        browser.wait("return performance.getEntriesByName('let go to full quality').length")
        times.append(browser.run("return performance.getEntriesByName('let go to full quality')[0].duration"))
        browser.act("pointer", [{"type": "pointerDown", "button": 0}])
    return times


def measure(folder):
    browser = webdriver.Browser()
    for width, height in ((1920, 1080), (3840, 2160)):
        vantorel(folder, "testcard", "-o", "card.png", "--size", f"{width}x{height}")
        corners = [f"--{name}={x * width:.0f},{y * height:.0f}" for name, x, y in
                   (("ul", .2, .2), ("ur", .8, .15), ("ll", .15, .8), ("lr", .85, .9))]
        with View(folder, "card.png", "--over", "card.png", *corners) as view:
            ready(browser, view)
            first = first_picture(browser, view)
            x, y = centre_of(browser, .2 * width, .2 * height, width, height)
            steps = [{"type": "pointerMove", "x": round(x), "y": round(y)}, {"type": "pointerDown", "button": 0}]
            for i in range(1, 111):
                steps += [{"type": "pointerMove", "x": round(x + i), "y": round(y + i / 2)},
                          {"type": "pause", "duration": 60}]
            before = [processor_seconds(each) for each in (view.process, browser.driver)]
            browser.act("pointer", steps)
            used = [processor_seconds(each) - b for each, b in zip((view.process, browser.driver), before)]
            moves = browser.run("return performance.getEntriesByName('drag to drawn').length")
            drawn = browser.run("return performance.getEntriesByName('drag to drawn').map(e => e.duration)")[-100:]
            browser.run("performance.clearMeasures()")
            full = full_quality(browser, [(x + 110 - 4 * i, y + 55) for i in range(5)])
            browser.open("about:blank")
            print(f"{width}x{height}: drag to drawn {statistics.median(drawn):.0f} ms (median of {len(drawn)}, worst "
                  f"{max(drawn):.0f}), let go to full quality {statistics.median(full):.0f} ms (median of {len(full)}, worst "
                  f"{max(full):.0f}), {first}; a drawn move takes {1e3 * used[0] / moves:.0f} ms of the server's processors and "
                  f"{1e3 * used[1] / moves:.0f} ms of the browser's; load {os.getloadavg()[0]:.0f}")
            view.end()
    browser.close()


KEYS = (["Tab"], ["ArrowLeft"], ["ArrowRight"], ["ArrowUp"], ["ArrowDown"], ["Shift", "ArrowRight"], ["Control", "ArrowUp"],
        ["Alt", "ArrowLeft"], ["1"], ["2"], ["3"], ["4"], ["5"], ["o"], ["d"], ["["], ["]"], ["p"], ["n"], ["+"], ["-"],
        ["0"], ["9"], ["Control", "z"], ["Control", "Shift", "z"], ["Control", "s"], ["."], [","], ["PageUp"],
        ["PageDown"], ["Delete"], [" "], ["Escape"], ["r"])
CLICKS = ("#undo", "#redo", "#reset", "#place", "#snap", "#overlay", "#difference", "#zoom-in", "#zoom-out", "#zoom-fit",
          "#save", "#key-previous", "#key-next", "#play", "#frame-next", "#render-frame", "#command-copy", "#copy")


def random_act(browser, chance, box):
    def place():
        return box[0] + chance.random() * box[2], box[1] + chance.random() * box[3]

    kind = chance.random()
    if kind < 0.45:
        browser.run("document.querySelector('#stage').focus()")
        browser.press(*chance.choice(KEYS))
    elif kind < 0.7:
        browser.drag([place() for _ in range(chance.randint(2, 6))], chance.choice((0, 10, 50)))
    elif kind < 0.8:
        browser.click_at(*place())
    elif kind < 0.9:
        browser.run("document.querySelector(arguments[0]).click()", chance.choice(CLICKS))
    elif kind < 0.95:
        field = f"#corner-{chance.randint(0, 3)}-{chance.choice('xy')}"
        browser.type(field, chance.choice(("12.5", "-400", "50%", "x", "", "1e9", "32767", "0.0001")))
    else:
        browser.run("const s = document.querySelector('#scrub'); s.value = arguments[0];"
                    "s.dispatchEvent(new Event('input'))", chance.randint(1, 6))


def unexpected(complaints):
    """Without what the server refuses in order, such as corners beyond what the effect holds; the page says why."""
    return [text for text in complaints if "status of 422" not in text]


def monkey(folder, seconds=600, seed=1):
    chance = random.Random(int(seed))
    vantorel(folder, "testcard", "-o", "layer.png", "--size", "640x360")
    for frame in range(1, 6):
        vantorel(folder, "render", "layer.png", "-o", f"plate.{frame}.jpg", "--ul", f"{3 * frame},{frame}")
    browser = webdriver.Browser(1200, 700)
    with View(folder, "layer.png", "--over", "plate.%d.jpg", "--frames", "1-5", "--corners", "corners.csv", "-o",
              "out.%d.png") as view:
        ready(browser, view)
        box = browser.run("const b = document.querySelector('#stage').getBoundingClientRect();"
                          "return [b.left, b.top, b.width, b.height]")
        begin = told = last = time.monotonic()
        acts, faults = 0, []
        while time.monotonic() - begin < float(seconds):
            random_act(browser, chance, box)
            acts += 1
            if time.monotonic() - last > 10:
                print(f"{last - begin:5.0f} s: stood still for {time.monotonic() - last:.0f} s", flush=True)
                begin += time.monotonic() - last  # an hour of acts, not of waiting
            last = time.monotonic()
            if time.monotonic() - told > 30:
                told = time.monotonic()
                faults += unexpected(browser.complaints())
                heap = browser.run("return Math.round(performance.memory.usedJSHeapSize / 1024)")
                print(f"{told - begin:5.0f} s: {acts} acts, server {view.resident_kib()} KiB, page {heap} KiB, "
                      f"{len(faults)} faults, says '{browser.text('#status')}'", flush=True)
        faults += unexpected(browser.complaints())
        browser.open("about:blank")
        code = view.end()
        browser.close()
        print(f"{acts} acts, exit code {code}, faults: {faults}")
        sys.exit(1 if faults or code not in (0, 130) else 0)


def audit(folder, axe):
    vantorel(folder, "testcard", "-o", "layer.png", "--size", "640x360")
    browser = webdriver.Browser()
    violations = []
    with View(folder, "layer.png", "--frames", "1-5", "--corners", "corners.csv") as view:
        ready(browser, view)
        for state in ("", "document.querySelector('#help').showModal()"):
            browser.run(state)
            # By the driver: the page's policy lets no other script in.
            browser.run(pathlib.Path(axe).read_text() + "; window.axe = axe")
            result = browser.run("return window.axe.run()")
            violations += result["violations"]
            print(f"{len(result['passes'])} rules passed, {len(result['violations'])} violated, "
                  f"{len(result['incomplete'])} for people to decide: {[r['id'] for r in result['incomplete']]}")
        browser.open("about:blank")
        view.end()
    browser.close()
    for violation in violations:
        print(violation["id"], violation["help"], [node["html"] for node in violation["nodes"]])
    sys.exit(1 if violations else 0)


def pictures(folder):
    browser = webdriver.Browser(1180, 640)
    images = ROOT / "docs" / "images"
    with View(images, "layer.jpg", "--over", "plate.jpg", "-o", folder / "result.png", "--ul", "147.6,58.4", "--ur",
              "340.1,51.6", "--ll", "154.2,193.6", "--lr", "339.1,232.7") as view:
        ready(browser, view)
        browser.press("2")
        browser.wait("return document.querySelector('#command').value")
        browser.run("return new Promise(done => setTimeout(done, 800))")
        browser.screenshot(folder / "view.png")
        browser.open("about:blank")
        view.end()
    browser.close()


def main():
    mode, folder = sys.argv[1], pathlib.Path(sys.argv[2]).absolute()
    folder.mkdir(parents=True, exist_ok=True)
    {"measure": measure, "monkey": monkey, "audit": audit, "pictures": pictures}[mode](folder, *sys.argv[3:])


main()
