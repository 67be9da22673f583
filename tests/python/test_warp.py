import os
import signal
import subprocess
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
import vantorel
from hypothesis import given, settings, strategies as st

DTYPES = (np.uint8, np.uint16, np.float32)
TRAPEZOID = [(20, 10), (76, 10), (10, 44), (86, 44)]


def picture(dtype=np.uint8, shape=(48, 96, 4), seed=1):
    values = np.random.default_rng(seed).random(shape)
    return values.astype(dtype) if dtype == np.float32 else (values * np.iinfo(dtype).max).astype(dtype)


@settings(deadline=None, max_examples=40)
@given(st.sampled_from(DTYPES), st.sampled_from([(), (1,), (3,), (4,)]), st.integers(1, 40), st.integers(1, 40))
def test_identity_is_exact(dtype, channels, height, width):
    image = picture(dtype, (height, width) + channels)
    premultiplied = channels == (4,)
    np.testing.assert_array_equal(vantorel.warp(image, None, premultiplied=premultiplied), image)


@pytest.mark.parametrize("dtype", DTYPES)
@pytest.mark.parametrize("channels", [(), (1,), (3,), (4,)])
def test_views_give_what_their_copies_give(dtype, channels):
    base = picture(dtype, (96, 192) + channels)
    for view in (base[::2, ::2], base[::-1, ::-1], base[10:60, 7:90], base[..., ::-1] if channels else base.T):
        result = vantorel.warp(view, TRAPEZOID, size=(96, 48))
        np.testing.assert_array_equal(result, vantorel.warp(np.ascontiguousarray(view), TRAPEZOID, size=(96, 48)))
        out = np.zeros((48, 192) + channels, dtype)[:, ::2]
        assert vantorel.warp(view, TRAPEZOID, size=(96, 48), out=out) is out
        np.testing.assert_array_equal(out, result)


RAW = ["-f", "rawvideo", "-pix_fmt", "rgba"]


def ffmpeg(*arguments, **options):
    return subprocess.run(["ffmpeg", "-v", "error", "-y", *arguments], check=True, stdout=subprocess.PIPE, **options).stdout


def drawn_by_the_command(folder, image, quality, *options):
    height, width = image.shape[:2]
    ffmpeg(*RAW, "-s", f"{width}x{height}", "-i", "-", "in.png", cwd=folder, input=image.tobytes())
    places = [f"--{name}={x},{y}" for name, (x, y) in zip(("ul", "ur", "ll", "lr"), TRAPEZOID)]
    command = [os.environ["VANTOREL_COMMAND"], "render", "in.png", "-o", "out.png", "--quality", quality, *places, *options]
    subprocess.run(command, cwd=folder, check=True)
    return np.frombuffer(ffmpeg("-i", "out.png", *RAW, "-", cwd=folder), np.uint8).reshape(image.shape)


@pytest.mark.parametrize("quality", ["standard", "high", "best"])
def test_an_opaque_picture_is_the_commands_to_the_bit(tmp_path, quality):
    image = picture()
    image[..., 3] = 255
    expected = drawn_by_the_command(tmp_path, image, quality)
    np.testing.assert_array_equal(vantorel.warp(image, TRAPEZOID, quality=quality), expected)


def test_a_translucent_picture_is_what_the_command_draws_in_eight_bits(tmp_path):
    image = picture()
    for quality in ("standard", "high", "best"):
        expected = drawn_by_the_command(tmp_path, image, quality, "--depth", "8", "--overwrite")
        np.testing.assert_array_equal(vantorel.warp(image, TRAPEZOID, quality=quality), expected)


def test_rgb_is_rgba_over_black_and_grey_is_one_of_its_channels():
    rgb = picture(shape=(48, 96, 3))
    rgba = np.dstack([rgb, np.full((48, 96), 255, np.uint8)])
    expected = vantorel.warp(rgba, TRAPEZOID, premultiplied=True)
    np.testing.assert_array_equal(vantorel.warp(rgb, TRAPEZOID), expected[..., :3])
    np.testing.assert_array_equal(vantorel.warp(rgb[..., 1], TRAPEZOID), expected[..., 1])


def test_background_fills_the_outside():
    result = vantorel.warp(picture(shape=(48, 96, 3)), TRAPEZOID, background=(1, 2, 3))
    assert tuple(result[0, 0]) == (1, 2, 3)


def test_middle_lands_where_the_homography_says():
    size, corners = (192, 96), [(40, 20), (152, 20), (20, 88), (172, 88)]
    x, y, w = vantorel.homography(corners, size) @ (96, 48, 1)
    image = np.zeros((96, 192), np.float32)
    image[48:] = 1
    column = vantorel.warp(image, corners, quality="best")[21:86, int(x / w)]
    assert 86 - column.sum() == pytest.approx(y / w, abs=0.05)


def test_threads_agree():
    image = picture(shape=(200, 300, 3))
    corners = [[(10 + i, 5), (280, 9 + i), (3, 180), (290 - i, 190)] for i in range(24)]
    expected = [vantorel.warp(image, c, threads=1) for c in corners]
    with ThreadPoolExecutor(8) as pool:
        for result, wanted in zip(pool.map(lambda c: vantorel.warp(image, c), corners), expected):
            np.testing.assert_array_equal(result, wanted)


def test_other_threads_run_and_control_c_stops_a_long_warp():
    image = picture(shape=(3000, 3000, 4))
    ticks = []

    def tick():
        time.sleep(0.1)
        ticks.append(1)
        signal.raise_signal(signal.SIGINT)

    thread = threading.Thread(target=tick)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        while True:
            vantorel.warp(image, None, size=(6000, 6000), quality="best", samples=8, threads=1)
    thread.join()
    assert ticks


def test_a_signal_handler_may_warp_in_the_middle_of_a_warp():
    big, small, inner = picture(shape=(500, 500, 3)), picture(shape=(64, 64, 3), seed=2), []
    square, arguments = [(5, 3), (60, 9), (2, 50), (61, 62)], dict(size=(3000, 3000), quality="best", samples=8, threads=1)
    outer_corners = [(10, 20), (2900, 5), (0, 2800), (2990, 2950)]
    wanted_outer, wanted_inner = vantorel.warp(big, outer_corners, **arguments), vantorel.warp(small, square)
    before = signal.signal(signal.SIGALRM, lambda *_: inner.append(vantorel.warp(small, square)))
    signal.setitimer(signal.ITIMER_REAL, 0.02, 0.02)
    try:
        outer = vantorel.warp(big, outer_corners, **arguments)
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)
    assert len(inner) > 2  # at most one before and one after the warp
    np.testing.assert_array_equal(outer, wanted_outer)
    for result in inner:
        np.testing.assert_array_equal(result, wanted_inner)


@pytest.mark.parametrize(
    "arguments, exception, text",
    [
        (dict(corners=[(float("nan"), 0)] * 4), ValueError, "corner"),
        (dict(corners=[(float("inf"), 0)] * 4), ValueError, "corner"),
        (dict(corners=[(0, 0)] * 3), ValueError, r"\(4, 2\)"),
        (dict(corners="four"), ValueError, "corners"),
        (dict(size=(0, 5)), ValueError, "size"),
        (dict(size=(5, 5), canvas=(0, 0, 5, 5)), ValueError, "omit"),
        (dict(quality="fine"), ValueError, "fine"),
        (dict(samples=3), ValueError, "samples"),
        (dict(image=picture().astype(float)), TypeError, "float64"),
        (dict(image=picture(np.uint16).astype(">u2")), TypeError, "byte order"),
        (dict(image=np.zeros((4, 4, 2), np.uint8)), ValueError, "shape"),
        (dict(image=np.zeros((0, 4), np.uint8)), ValueError, "image"),
        (dict(out=np.zeros((2, 2, 4), np.uint8)), ValueError, "out"),
        (dict(background=(1, 2)), ValueError, "background"),
    ],
)
def test_bad_arguments_say_why(arguments, exception, text):
    with pytest.raises(exception, match=text):
        vantorel.warp(**{"image": picture(), "corners": TRAPEZOID, **arguments})


ANY_NUMBER = st.one_of(st.floats(width=64), st.sampled_from([0.0, 5.0, 32767.9, -32768.0, 1e300]))
ANY_CORNERS = st.one_of(st.lists(st.tuples(ANY_NUMBER, ANY_NUMBER), min_size=4, max_size=4), st.just([(3, 3)] * 4))


@settings(deadline=None, max_examples=150)
@given(
    st.sampled_from(DTYPES + (bool, np.int8, np.float64, complex, object, "S3")),
    st.lists(st.integers(0, 9), max_size=4),
    ANY_CORNERS,
    st.one_of(st.none(), ANY_CORNERS),
    st.one_of(st.none(), st.tuples(st.integers(-1, 40), st.integers(-1, 40)), st.just((2**40, 1))),
    st.one_of(st.none(), ANY_NUMBER, st.lists(ANY_NUMBER, max_size=5)),
    st.sampled_from([0, 1, 3, -1, 2**31 - 1]),
)
def test_nonsense_is_refused_or_drawn(dtype, shape, corners, from_corners, size, background, number):
    image = np.zeros(shape, dtype)
    arguments = dict(from_corners=from_corners, background=background, samples=number % 5, threads=number)
    for call in (
        lambda: vantorel.warp(image, corners, size, **arguments),
        lambda: vantorel.homography(corners, size or (0, 0)),
        lambda: vantorel.bounding_box(corners, size or (0, 0)),
    ):
        try:
            call()
        except (ValueError, TypeError, vantorel.Error) as error:
            assert str(error)


def test_out_may_be_the_image():
    for premultiplied in (False, True):
        image = picture()
        expected = vantorel.warp(image, TRAPEZOID, premultiplied=premultiplied)
        part = image[:, ::-1]
        mirrored = vantorel.warp(part.copy(), TRAPEZOID, premultiplied=premultiplied)
        both = image.copy()
        vantorel.warp(both, TRAPEZOID, premultiplied=premultiplied, out=both)
        np.testing.assert_array_equal(both, expected)
        vantorel.warp(part, TRAPEZOID, premultiplied=premultiplied, out=image)
        np.testing.assert_array_equal(image, mirrored)


def test_read_only_out_is_refused():
    out = np.zeros((48, 96, 4), np.uint8)
    out.flags.writeable = False
    with pytest.raises(ValueError, match="read-only"):
        vantorel.warp(picture(), TRAPEZOID, out=out)


def test_degenerate_corners_give_an_empty_picture():
    assert not vantorel.warp(picture(shape=(48, 96, 3)), [(5, 5)] * 4).any()


def test_corner_files(tmp_path):
    path = tmp_path / "track.csv"
    path.write_text("frame,ulx,uly,urx,ury,llx,lly,lrx,lry\n1,0,0,9,0,0,9,9,9\n2,1,0,9,0,0,9,9,8\n")
    frames, corners = vantorel.read_corners(path)
    assert frames.tolist() == [1, 2] and corners.shape == (2, 4, 2) and corners[1, 0].tolist() == [1, 0]
    with pytest.raises(FileNotFoundError):
        vantorel.read_corners(tmp_path / "none.csv")
    part = tmp_path / "part.json"
    part.write_text('{"keys": [{"frame": 1, "ul": [0, 0], "ur": [9, 0], "ll": [0, 9], "lr": [9, 9]}],'
                    ' "from": {"ul": [0, 0], "ur": [4, 0], "ll": [0, 4], "lr": [4, 4]}}')
    with pytest.warns(UserWarning, match="from"):
        assert vantorel.read_corners(part, layer_size=(9, 9))[1][0, 1].tolist() == [9, 0]
