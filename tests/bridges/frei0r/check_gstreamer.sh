#!/usr/bin/env bash
# GStreamer with our filter against the command: the same pixels.
# check_gstreamer.sh VANTOREL PLUGIN_FOLDER SCRATCH_FOLDER
set -euo pipefail
vantorel=$1
rm -rf "$3" && mkdir -p "$3" && cd "$3"
# A registry of its own, which does not outlast the build.
export FREI0R_PATH=$2 GST_REGISTRY=$3/registry.bin

"$vantorel" testcard -o card.png --size 960x540
"$vantorel" render card.png -o expected.png --quality high --depth 8 \
  --ul 192,108 --ur 768,108 --ll 48,432 --lr 912,432
gst-launch-1.0 -q filesrc location=card.png ! pngdec ! videoconvert ! video/x-raw,format=RGBA ! \
  frei0r-filter-vantorel upper-left-x=0.4 upper-left-y=0.4 upper-right-x=0.6 upper-right-y=0.4 \
  lower-left-x=0.35 lower-left-y=0.6 lower-right-x=0.65 lower-right-y=0.6 ! filesink location=drawn.rgba
cmp drawn.rgba <(ffmpeg -v error -i expected.png -f rawvideo -pix_fmt rgba -)
