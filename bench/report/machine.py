"""A short description of the machine."""

import os
import platform
import re


def cpu_flags():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        found = re.search(r"^flags\s*:(.*)$", file.read(), re.MULTILINE)
    return set(found.group(1).split()) if found else set()


def describe():
    flags = cpu_flags()
    kind = "virtual machine" if "hypervisor" in flags else "machine"
    sets = "AVX-512" if "avx512f" in flags else "AVX2" if "avx2" in flags else "SSE2" if "sse2" in flags else ""
    count = len(os.sched_getaffinity(0))
    return f"a {count}-core {platform.machine()} {kind}" + (f" with {sets}" if sets else "")
