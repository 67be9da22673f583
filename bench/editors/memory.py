"""Resident memory of a program that draws many frames, and uses many instances, of the frei0r filter."""

import ctypes
import os

import numpy as np

WIDTH, HEIGHT = 320, 180


class Filter:
    def __init__(self, folder):
        self.library = ctypes.CDLL(os.path.join(folder, "vantorel.so"))
        self.library.f0r_construct.restype = ctypes.c_void_p
        assert self.library.f0r_init() == 1

    def construct(self):
        return ctypes.c_void_p(self.library.f0r_construct(WIDTH, HEIGHT))

    def destruct(self, instance):
        self.library.f0r_destruct(instance)

    def draw(self, instance, number, source, target):
        value = ctypes.c_double(0.3 + 0.05 * (number % 7) / 7)
        self.library.f0r_set_param_value(instance, ctypes.byref(value), number % 8)
        pointers = (picture.ctypes.data_as(ctypes.c_void_p) for picture in (source, target))
        self.library.f0r_update(instance, ctypes.c_double(0), *pointers)


def resident_kib():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") // 1024


def resident_over(folder, frames=10000, instances=1000):
    """KiB after a tenth and after all of the frames of one instance, then of the instances, one after another."""
    random = np.random.default_rng(2)
    translucent = random.integers(0, 256, (HEIGHT, WIDTH, 4), dtype=np.uint8)
    sources = [translucent, np.dstack([translucent[..., :3], np.full((HEIGHT, WIDTH), 255, np.uint8)])]
    target = np.empty_like(translucent)
    effect = Filter(folder)
    memory = []
    instance = effect.construct()
    for number in range(frames):
        effect.draw(instance, number, sources[number % 2], target)
        if number + 1 in (frames // 10, frames):
            memory.append(resident_kib())
    effect.destruct(instance)
    for number in range(instances):
        instance = effect.construct()
        effect.draw(instance, number, sources[number % 2], target)
        effect.destruct(instance)
        if number + 1 in (instances // 10, instances):
            memory.append(resident_kib())
    return memory
