"""The filters that are compared, as ffmpeg and melt run them."""

import os
import resource
import subprocess
from pathlib import Path

import numpy as np
from pictures import HEIGHT, WIDTH

SIZE = f"{WIDTH}x{HEIGHT}"
MLT_PROFILE = f"""description={SIZE}
width={WIDTH}
height={HEIGHT}
frame_rate_num=25
frame_rate_den=1
progressive=1
sample_aspect_num=1
sample_aspect_den=1
display_aspect_num=16
display_aspect_den=9
colorspace=709
"""


def frei0r_numbers(corners):
    """0 is one picture size before the picture, 1 one beyond it."""
    return [(c / size + 1) / 3 for corner in corners for c, size in zip(corner, (WIDTH, HEIGHT))]


def frei0r_text(corners):
    return "|".join(f"{number:.9f}" for number in frei0r_numbers(corners))


def vantorel(quality):
    return lambda corners: f"frei0r=vantorel:{frei0r_text(corners)}|{quality}"


def perspective(corners):
    places = ":".join(f"x{i}={x:g}:y{i}={y:g}" for i, (x, y) in enumerate(corners))
    return f"perspective={places}:interpolation=linear:sense=destination"


def corner_filter(corners):
    """The corner filter of frei0r-plugins, bilinear by default; its corners go around the picture."""
    return f"frei0r=c0rners:{frei0r_text(np.asarray(corners)[[0, 1, 3, 2]])}"


# Name: the format that the filter works in, and its text.
FILTERS = {
    "this one, standard": ("rgba", vantorel("standard")),
    "this one, high": ("rgba", vantorel("high")),
    "this one, best": ("rgba", vantorel("best")),
    "ffmpeg's `perspective`, linear": ("yuva444p", perspective),
    "frei0r-plugins' corner filter": ("rgba", corner_filter),
}


def set_filter_folder(folder):
    """Where ffmpeg and melt find this filter; the corner filter is where Debian installs it."""
    installed = "/usr/lib/frei0r-1"
    os.environ["FREI0R_PATH"] = os.environ["MLT_FREI0R_PLUGIN_PATH"] = f"{Path(folder).resolve()}:{installed}"
    os.environ["QT_QPA_PLATFORM"] = "offscreen"


def ffmpeg(chain, source, output, *options):
    single = ["-threads", "1", "-filter_threads", "1"]
    command = ["ffmpeg", "-v", "error", "-y", *single, *options, "-f", "rawvideo", "-pix_fmt", "rgba", "-s", SIZE,
               "-i", str(source), "-vf", chain, *single, *output]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def drawn_by_ffmpeg(name, source, corners):
    """RGBA of one frame."""
    pixel_format, text = FILTERS[name]
    # Bilinear chroma conversion would blur the measured pictures; at 4:4:4 there is none.
    raw = ffmpeg(f"format={pixel_format},{text(corners)},format=rgba", source,
                 ["-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "rgba", "-"])
    return np.frombuffer(raw, np.uint8).reshape(HEIGHT, WIDTH, 4)


def processor_seconds(chain, source, frames):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    ffmpeg(chain, source, ["-frames:v", str(frames), "-f", "null", "-"], "-stream_loop", "-1")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def drawn_by_melt(service, parameters, source_png, folder):
    """RGBA of one frame from melt, which writes it as a PNG."""
    (folder / "profile").write_text(MLT_PROFILE)
    values = [f"{i}={value}" for i, value in parameters.items()]
    subprocess.run(["melt", "-profile", "./profile", "-silent", source_png, "out=0", "-attach", service, *values,
                    "-consumer", "avformat:melt-%d.png", "vcodec=png", "pix_fmt=rgba", "real_time=-1"],
                   cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", folder / "melt-1.png", "-f", "rawvideo", "-pix_fmt", "rgba",
                          "-"], check=True, stdout=subprocess.PIPE).stdout
    return np.frombuffer(raw, np.uint8).reshape(HEIGHT, WIDTH, 4)
