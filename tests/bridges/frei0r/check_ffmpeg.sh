#!/usr/bin/env bash
# ffmpeg's frei0r filter with ours, against the command: the same pixels.
# check_ffmpeg.sh VANTOREL PLUGIN_FOLDER SCRATCH_FOLDER
set -euo pipefail
vantorel=$1
export FREI0R_PATH=$2
rm -rf "$3" && mkdir -p "$3" && cd "$3"

same() {
  cmp <(ffmpeg -v error -i "$1" -f rawvideo -pix_fmt rgba -) <(ffmpeg -v error -i "$2" -f rawvideo -pix_fmt rgba -)
}
# In a picture of 960x540, a third of (x / 960 + 1) and of (y / 540 + 1).
trapezoid="0.4|0.4|0.6|0.4|0.35|0.6|0.65|0.6"

"$vantorel" testcard -o card.png --size 960x540
for quality in standard high best; do
  "$vantorel" render card.png -o "expected-$quality.png" --quality "$quality" --depth 8 \
    --ul 192,108 --ur 768,108 --ll 48,432 --lr 912,432
  ffmpeg -v error -y -i card.png -vf "format=rgba,frei0r=vantorel:$trapezoid|$quality" "$quality.png"
  same "$quality.png" "expected-$quality.png" || { echo "quality $quality differs"; exit 1; }
done

# Black outside, over a background that stays.
oiiotool --pattern constant:color=0,0,0,1 960x540 4 -d uint8 -o black.png
"$vantorel" render card.png -o expected-black.png --over black.png --quality high --depth 8 \
  --ul 192,108 --ur 768,108 --ll 48,432 --lr 912,432
ffmpeg -v error -y -i card.png -vf "format=rgba,frei0r=vantorel:$trapezoid|high|1|y" opaque.png
same opaque.png expected-black.png || { echo "opaque outside differs"; exit 1; }

# Corners that change on the way: the picture itself, then the trapezoid.
echo "0.5 frei0r filter_params '$trapezoid|high|1|y';" > commands
ffmpeg -v error -y -loop 1 -framerate 2 -t 1 -i card.png \
  -vf "format=rgba,sendcmd=f=commands,frei0r=vantorel" moving-%d.png
same moving-1.png card.png || { echo "the first frame is not the picture itself"; exit 1; }
same moving-2.png expected-black.png || { echo "the changed corners differ"; exit 1; }
