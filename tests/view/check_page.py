"""Places, moves, keys, saves and renders corners through the page, in a headless browser.

check_page.py FOLDER [firefox]; VANTOREL_COMMAND is the command. Exit code 77 where no browser is installed.
"""

import contextlib
import csv
import json
import pathlib
import shutil
import struct
import subprocess
import sys
import urllib.error

import webdriver
from viewing import VANTOREL, View, pixels, vantorel

WIDTH, HEIGHT = 480, 270
FRAMES = range(1, 6)


def make_shot(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    vantorel(folder, "testcard", "-o", "layer.png", "--size", "640x360")
    vantorel(folder, "testcard", "-o", "card.png", "--size", f"{WIDTH}x{HEIGHT}")
    for frame in FRAMES:
        vantorel(folder, "render", "card.png", "-o", f"plate.{frame:04}.jpg", "--ul", f"{3 * frame},{frame}")
    (folder / "corners.csv").write_text("# by hand\nframe,ulx,uly,urx,ury,llx,lly,lrx,lry,note\n"
                                        "1,100,60,300,50,90,200,320,210,  first # keep\n")


class Page:
    """The page in the browser, with the picture's pixels in place of the window's."""

    def __init__(self, browser, view):
        self.browser, self.view = browser, view
        browser.open(view.address)
        browser.wait("return document.documentElement.dataset.ready")

    def corners(self):
        values = self.browser.run("return [...document.querySelectorAll('#corner-fields input')].map(f => f.value)")
        return [float(value) for value in values]

    def on_screen(self, x, y):
        """Where a place of the picture is, which fills the canvas as far as the margin lets it when it is fitted."""
        box = self.browser.run("const b = document.querySelector('#stage').getBoundingClientRect();"
                               "return [b.left, b.top, b.width, b.height]")
        zoom = 0.94 * min(box[2] / WIDTH, box[3] / HEIGHT)
        return (box[0] + box[2] / 2 + (x - WIDTH / 2) * zoom, box[1] + box[3] / 2 + (y - HEIGHT / 2) * zoom)

    def status(self):
        return self.browser.text("#status")


@contextlib.contextmanager
def page_of(browser, folder, *arguments):
    """The page of a view of that shot; when it is left, nothing has been complained of, and the view ends well."""
    with View(folder, *arguments) as view:
        yield Page(browser, view)
        faults = browser.complaints()
        assert faults == [], faults
        browser.open("about:blank")
        assert view.end() == 0


def near(found, wanted, tolerance):
    assert len(found) == len(wanted) and all(abs(a - b) <= tolerance for a, b in zip(found, wanted)), (found, wanted)


def check_placing(page):
    """Clicks in any order make sorted corners; every act can be undone; without a file there is nothing to save to."""
    browser = page.browser
    usual = page.corners()
    clicks = [(400, 220), (60, 40), (90, 230), (420, 30)]
    for place in clicks:
        browser.click_at(*page.on_screen(*place))
    placed = [60, 40, 420, 30, 90, 230, 400, 220]
    near(page.corners(), placed, 0.5)

    exact = page.corners()
    browser.press("1")
    browser.press("ArrowRight")
    browser.press("Shift", "ArrowDown")
    browser.press("Control", "ArrowLeft")
    near(page.corners(), [exact[0] + 0.9, exact[1] + 10] + exact[2:], 1e-3)
    # To a quarter of a pixel, by keys alone.
    browser.press("4")
    for _ in range(30):
        away = 390.5 - page.corners()[6]
        if abs(away) <= 0.25:
            break
        size = "Shift" if abs(away) > 9.9 else "Control" if abs(away) < 0.9 else None
        browser.press(*filter(None, [size, "ArrowRight" if away > 0 else "ArrowLeft"]))
    near(page.corners()[6:7], [390.5], 0.25)
    # The upper edge, two corners at once, along an axis alone.
    before = page.corners()
    middle = page.on_screen((before[0] + before[2]) / 2, (before[1] + before[3]) / 2)
    browser.press("n")
    browser.drag([middle, (middle[0] + 4, middle[1] - 20), (middle[0] + 5, middle[1] - 40)])
    after = page.corners()
    assert after[1] < before[1] - 5 and abs((after[1] - before[1]) - (after[3] - before[3])) < 1e-3, (before, after)
    assert after[4:] == before[4:]
    browser.type("#corner-2-x", "25%")
    assert page.corners()[4] == 160.0
    browser.type("#corner-2-x", "left")
    assert "'left' is not a position" in page.status() and page.corners()[4] == 160.0

    # A crossed quadrilateral is named, and drawn all the same.
    browser.type("#corner-0-x", "450")
    assert "Crossed" in browser.text("#shape"), browser.text("#shape")
    browser.press("Escape")
    browser.run("document.querySelector('#stage').focus()")
    changed = page.corners()
    acts = 0
    while acts < 40 and browser.run("return !document.querySelector('#undo').disabled"):
        browser.press("Control", "z")
        acts += 1
    assert page.corners() == usual and acts >= 7, (page.corners(), usual, acts)
    for _ in range(acts):
        browser.press("Control", "Shift", "z")
    assert page.corners() == changed
    assert browser.run("return document.querySelector('#save').disabled && document.querySelector('#render-frame').disabled")


# A white quadrilateral on black, whose corners the page must find.
SCREEN = [118.3, 61.7, 342.85, 48.2, 126.4, 201.55, 351.1, 222.6]


def draw_screen(folder):
    for colour in ("white", "black"):
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", f"color={colour}:s={WIDTH}x{HEIGHT}", "-frames:v",
                        "1", f"{colour}.png"], cwd=folder, check=True)
    vantorel(folder, "render", "white.png", "-o", "screen.png", "--over", "black.png", *corner_options(SCREEN))


def corner_options(corners):
    return [f"--{name}={corners[2 * i]},{corners[2 * i + 1]}" for i, name in enumerate(("ul", "ur", "ll", "lr"))]


def check_snapping(page):
    """A corner that is let go near one of the plate's lies on it, unless Alt says otherwise."""
    browser = page.browser
    for c in range(4):
        x, y = SCREEN[2 * c] + 30, SCREEN[2 * c + 1] + 20
        near(page.corners()[2 * c:2 * c + 2], [x, y], 1e-6)
        browser.drag([page.on_screen(x, y), page.on_screen(x - 20, y - 20), page.on_screen(x - 29, y - 21)])
        browser.wait("return document.querySelector('#status').textContent.includes('snapped')")
    near(page.corners(), SCREEN, 0.15)
    browser.press("n")
    x, y = page.on_screen(*page.corners()[:2])
    browser.drag([(x, y), (x + 5, y + 5)])
    browser.wait("return document.querySelector('#status').textContent.startsWith('Upper left')")
    moved = page.corners()
    assert 1 < moved[0] - SCREEN[0] < 3, moved


def check_shot(page, folder):
    """Keys over time, saved, rendered by the page and by the command, all to the same bits."""
    browser, view = page.browser, page.view
    assert page.corners() == [100, 60, 300, 50, 90, 200, 320, 210]
    for _ in range(4):
        browser.press(".")
    browser.wait("return document.querySelector('#frame-number').value === '5'")
    browser.press("5")
    browser.press("Shift", "ArrowRight")
    browser.wait("return document.querySelector('#key-note').textContent === '2 keys'")
    assert browser.value("#interpolation") == "linear"
    assert browser.run("return document.querySelector('#interpolation').disabled"), "a table holds linear keys alone"
    browser.press("PageUp")
    browser.wait("return document.querySelector('#frame-number').value === '1'")
    assert page.corners()[0] == 100
    browser.run("const s = document.querySelector('#scrub'); s.value = 3; s.dispatchEvent(new Event('input'))")
    browser.wait("return document.querySelector('#frame-number').value === '3'")
    near(page.corners(), [105, 60, 305, 50, 95, 200, 325, 210], 1e-6)
    browser.run("document.querySelector('#stage').focus()")
    browser.press("1")
    browser.press("Control", "ArrowUp")
    browser.press("Control", "s")
    browser.wait("return document.querySelector('#status').textContent.startsWith('Saved')")
    saved = (folder / "corners.csv").read_text().splitlines()
    assert saved[:3] == ["# by hand", "frame,ulx,uly,urx,ury,llx,lly,lrx,lry,note",
                         "1,100,60,300,50,90,200,320,210,  first # keep"], saved
    assert saved[3:] == ["3,105,59.9,305,50,95,200,325,210,", "5,110,60,310,50,100,200,330,210,"], saved

    browser.click("#render-range")
    browser.wait("return document.querySelector('#render-note').textContent.includes('written')")
    vantorel(folder, "render", "layer.png", "--over", "plate.%04d.jpg", "--corners", "corners.csv", "--frames", "1-5",
             "-o", "again.%04d.png")
    keys = [[float(cell) for cell in row[:9]] for row in csv.reader(saved[2:])]
    for frame in FRAMES:
        rendered = pixels(folder / f"again.{frame:04}.png")
        assert pixels(folder / f"out.{frame:04}.png") == rendered, f"frame {frame} is rendered differently by the page"
        for left, top, right, bottom in ((0, 0, WIDTH, HEIGHT), (101, 37, 299, 211)):
            region = {"frame": frame, "n": 1, "region": [left, top, right, bottom]}
            shown = bytearray(view.post("backdrop", region)[16:])
            picture = view.post("picture", region | {"track": {"interpolation": "linear", "keys": keys}})
            x, y, width, height = struct.unpack("<4i", picture[:16])
            for row in range(height):
                at = 4 * ((y - top + row) * (right - left) + x - left)
                shown[at:at + 4 * width] = picture[16 + 4 * width * row:16 + 4 * width * (row + 1)]
            part = b"".join(rendered[4 * (y * WIDTH + left):4 * (y * WIDTH + right)] for y in range(top, bottom))
            assert shown == part, f"frame {frame} is shown with other pixels than it is rendered with"
    command = browser.value("#command")
    assert command.startswith("vantorel render layer.png -o out.%04d.png --corners corners.csv"), command
    subprocess.run(command.replace("vantorel", VANTOREL, 1).replace("out.", "told."), shell=True, check=True, cwd=folder)
    assert pixels(folder / "told.0003.png") == pixels(folder / "again.0003.png")


def check_json(folder):
    """What is not the page's in a JSON file stays in it."""
    text = {"$schema": "corners.schema.json", "units": "percent", "x-shot": {"take": 3},
            "keys": [{"frame": 1, "ul": [10, 10], "ur": [90, 10], "ll": [10, 90], "lr": [90, 90], "_by": "hand"}]}
    (folder / "corners.json").write_text(json.dumps(text))
    with View(folder, "layer.png", "--corners", "corners.json") as view:
        track = json.loads(view.get("shot"))["track"]
        assert track["keys"] == [[1, 64, 36, 576, 36, 64, 324, 576, 324]], track
        track["keys"].append([4] + [32] * 2 + [576, 36, 64, 324, 576, 324])
        view.post("save", {"track": track})
        assert view.end() == 0
    text["keys"].append({"frame": 4, "ul": [5, 8.888889], "ur": [90, 10], "ll": [10, 90], "lr": [90, 90]})
    assert json.loads((folder / "corners.json").read_text()) == text


def check_sizes(folder):
    """A picture of a sequence that has another size is named, not read beyond its end."""
    for frame, size in ((1, "64x48"), (2, "32x24")):
        vantorel(folder, "testcard", "-o", f"odd.{frame}.png", "--size", size)
    with View(folder, "layer.png", "--over", "odd.%d.png", "--matte", "odd.%d.png", "--frames", "1-2") as view:
        whole = {"n": 1, "region": [0, 0, 64, 48], "corners": [5, 5, 60, 5, 5, 40, 60, 40]}
        for path in ("backdrop", "draft"):
            assert len(view.post(path, whole | {"frame": 1})) > 16
            try:
                view.post(path, whole | {"frame": 2})
            except urllib.error.HTTPError as error:
                assert error.code == 422 and "odd.2.png: its size" in json.load(error)["error"]
            else:
                raise AssertionError(f"{path} shows a plate of another size")
        assert view.end() == 0


def check_touch(page):
    """A finger moves a corner; two zoom."""
    browser = page.browser
    browser.press("n")
    before = page.corners()
    x, y = page.on_screen(*before[:2])
    browser.touch([(x, y), (x + 20, y + 10), (x + 60, y + 30)])
    once = page.corners()
    assert once[0] - before[0] > 5 and once[2:] == before[2:], (before, once)
    if isinstance(browser, webdriver.Firefox):  # of two fingers its protocol passes on the first alone
        return
    x, y = page.on_screen(*once[:2])
    browser.touch([(x - 20, y), (x - 40, y), (x - 80, y)], [(x + 20, y), (x + 40, y), (x + 80, y)])
    assert page.corners() == once
    browser.touch([(x, y), (x + 20, y + 10), (x + 60, y + 30)])
    near([page.corners()[0] - once[0]], [(once[0] - before[0]) / 4], 0.3)


def check_smooth(browser, folder):
    """Smooth keys lie where the command puts them; the file keeps how its keys are joined, and others' changes."""
    keys = [{"frame": f, "ul": [40 + 3 * f * f % 50, 30 + f], "ur": [400 - f, 40], "ll": [60, 220 - 2 * f],
             "lr": [420, 230 + f * f % 11]} for f in (1, 3, 8, 9, 14)]
    file = folder / "smooth.json"
    file.write_text(json.dumps({"units": "px", "interpolation": "smooth", "keys": keys}))
    vantorel(folder, "corners", "smooth.json", "-o", "baked.csv")
    baked = [row for row in csv.reader((folder / "baked.csv").read_text().splitlines()) if row and row[0].isdigit()]
    with page_of(browser, folder, "layer.png", "--over", "plate.0001.jpg", "--corners", "smooth.json", "--frames",
                 "1-14") as page:
        assert len(baked) == 14 and browser.value("#interpolation") == "smooth", baked
        for row in baked:
            browser.run("const s = document.querySelector('#scrub'); s.value = arguments[0];"
                        "s.dispatchEvent(new Event('input'))", int(row[0]))
            near(page.corners(), [float(cell) for cell in row[1:9]], 2e-4)
        browser.run("const s = document.querySelector('#interpolation'); s.value = 'hold';"
                    "s.dispatchEvent(new Event('change'))")
        file.write_text(file.read_text().replace("smooth", "linear"))
        browser.click("#save")
        browser.wait("return document.querySelector('#conflict').open")
        assert json.loads(file.read_text())["interpolation"] == "linear"
        browser.click("#conflict-save")
        browser.wait("return document.querySelector('#status').textContent.startsWith('Saved')")
        assert json.loads(file.read_text()) == {"units": "px", "interpolation": "hold", "keys": keys}
        file.write_text(file.read_text().replace("hold", "linear"))
        browser.click("#save")
        browser.wait("return document.querySelector('#conflict').open")
        browser.click("#conflict-reload")
        browser.wait("return document.querySelector('#interpolation').value === 'linear'")
        browser.click("#undo")
        assert browser.value("#interpolation") == "hold"
        browser.click("#redo")


def main():
    folder = pathlib.Path(sys.argv[1]).absolute()
    make_shot(folder)
    check_json(folder)
    check_sizes(folder)
    if sys.argv[2:] == ["firefox"]:
        browser = webdriver.Firefox(folder / "profile")
    elif program := webdriver.missing():
        print(f"{program} is not installed; install it to test the page: scripts/setup browser")
        sys.exit(77)
    else:
        browser = webdriver.Browser()
    try:
        with page_of(browser, folder, "layer.png", "--over", "plate.0001.jpg") as page:
            check_placing(page)
        with page_of(browser, folder, "layer.png", "--over", "plate.%04d.jpg", "--corners", "corners.csv", "--frames",
                     "1-5", "-o", "out.%04d.png") as page:
            check_shot(page, folder)
        draw_screen(folder)
        away = [value + (20 if i % 2 else 30) for i, value in enumerate(SCREEN)]
        with page_of(browser, folder, "layer.png", "--over", "screen.png", *corner_options(away)) as page:
            check_snapping(page)
        with page_of(browser, folder, "layer.png", "--over", "screen.png") as page:
            check_touch(page)
        check_smooth(browser, folder)
    except Exception:
        browser.screenshot(folder / "failed.png")
        raise
    finally:
        browser.close()


main()
