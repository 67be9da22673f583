"""Test pictures of 1920x1080 in RGBA, and their exact image on four corners."""

import numpy as np

WIDTH, HEIGHT = 1920, 1080
# Upper left, upper right, lower left, lower right.
TRAPEZOID = np.array([(400, 200), (1520, 200), (200, 880), (1720, 880)], float)


def opaque(grey_or_rgb):
    rgb = np.broadcast_to(grey_or_rgb if grey_or_rgb.ndim == 3 else grey_or_rgb[..., None], (HEIGHT, WIDTH, 3))
    return np.ascontiguousarray(np.dstack([rgb, np.full((HEIGHT, WIDTH), 255)]).astype(np.uint8))


def halves():
    """Black above the middle line, white below."""
    return opaque(np.repeat(np.where(np.arange(HEIGHT) < HEIGHT // 2, 0, 255)[:, None], WIDTH, 1))


def detail():
    """A zone plate, checks of one to eight pixels, and noise: one in each channel."""
    y, x = np.mgrid[:HEIGHT, :WIDTH]
    radius_squared = (x - WIDTH / 2) ** 2 + (y - HEIGHT / 2) ** 2
    zone_plate = 127.5 + 127.5 * np.cos(np.pi * radius_squared / WIDTH)
    size = 1 << (4 * x // WIDTH)
    checks = 255 * ((x // size + y // size) % 2)
    noise = np.random.default_rng(1).integers(0, 256, (HEIGHT, WIDTH))
    return opaque(np.dstack([zone_plate, checks, noise]))


def shrunk_corners(factor):
    """The whole picture, upright, 1 / factor in size, about in the middle: on whole pixels."""
    left, top = (WIDTH - WIDTH // factor) // 2, (HEIGHT - HEIGHT // factor) // 2
    right, bottom = left + WIDTH // factor, top + HEIGHT // factor
    return np.array([(left, top), (right, top), (left, bottom), (right, bottom)], float)


def homography(corners):
    """The 3x3 matrix that takes (x, y, 1) of the picture's outline onto the corners."""
    equations, values = [], []
    for (x, y), (u, v) in zip([(0, 0), (WIDTH, 0), (0, HEIGHT), (WIDTH, HEIGHT)], corners):
        equations += [(x, y, 1, 0, 0, 0, -u * x, -u * y), (0, 0, 0, x, y, 1, -v * x, -v * y)]
        values += [u, v]
    return np.append(np.linalg.solve(equations, values), 1).reshape(3, 3)


def truth(image, corners, box, samples=16):
    """The picture on the corners, over black, within box (left, top, right, bottom): the mean of samples by samples
    points of each pixel, in uint8 RGB."""
    left, top, right, bottom = box
    inverse = np.linalg.inv(homography(corners))
    total = np.zeros((bottom - top, right - left, 3))
    for i in range(samples):
        for j in range(samples):
            y, x = np.mgrid[top:bottom, left:right] + np.array([(i + 0.5) / samples, (j + 0.5) / samples])[:, None, None]
            u, v, w = np.tensordot(inverse, np.stack([x, y, np.ones_like(x)]), 1)
            u, v = np.floor(u / w).astype(int), np.floor(v / w).astype(int)
            inside = (u >= 0) & (u < WIDTH) & (v >= 0) & (v < HEIGHT) & (w > 0)
            total += np.where(inside[..., None], image[v.clip(0, HEIGHT - 1), u.clip(0, WIDTH - 1), :3], 0)
    return np.round(total / samples**2).astype(np.uint8)
