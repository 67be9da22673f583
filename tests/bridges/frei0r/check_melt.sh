#!/usr/bin/env bash
# melt with our filter against the command: keyframed corners to the bit, and a background track as near as melt's own
# conversions to YUV let it come.
# check_melt.sh VANTOREL PLUGIN_FOLDER SCRATCH_FOLDER
set -euo pipefail
vantorel=$1
export FREI0R_PATH=$2 MLT_FREI0R_PLUGIN_PATH=$2 QT_QPA_PLATFORM=offscreen
rm -rf "$3" && mkdir -p "$3" && cd "$3"

# Runs melt until it has written the picture: on a busy machine it ends now and then without one, with or without a
# filter, and says that all went well.
melt_to() {
  local picture=$1
  shift
  for _ in 1 2 3 4 5; do
    melt -profile ./profile -silent "$@" vcodec=png pix_fmt=rgba real_time=-1 >> melt.log 2>&1
    [ ! -e "$picture" ] || return 0
  done
  echo "melt writes no $picture:" && cat melt.log && return 1
}

cat > profile <<'PROFILE'
description=960x540
width=960
height=540
frame_rate_num=25
frame_rate_den=1
progressive=1
sample_aspect_num=1
sample_aspect_den=1
display_aspect_num=16
display_aspect_den=9
colorspace=709
PROFILE
still=(1=0.4 2=0.6 3=0.4 4=0.35 5=0.6 6=0.65 7=0.6)
corners=(--ur 768,108 --ll 48,432 --lr 912,432 --quality high --depth 8)

"$vantorel" testcard -o card.png --size 960x540
melt_to moving-3.png card.png out=2 -attach frei0r.vantorel 0="0=0.333333;2=0.4" "${still[@]}" \
  -consumer avformat:moving-%d.png
for frame in 0 1 2; do
  "$vantorel" render card.png -o expected.png --overwrite --ul $((96 * frame)),108 "${corners[@]}"
  idiff -q expected.png moving-$((frame + 1)).png || { echo "frame $frame differs"; exit 1; }
done

# melt composites in YUV with half the chroma: of pictures without colour only the rounding of luma remains.
oiiotool card.png --ch G,G,G,A -o grey.png
oiiotool --pattern constant:color=0.25,0.25,0.25 960x540 3 -d uint8 -o plate.png
melt_to over-1.png plate.png out=0 -track grey.png out=0 -attach frei0r.vantorel 0=0.4 "${still[@]}" \
  -transition composite out=0 a_track=0 b_track=1 fill=1 \
  -consumer avformat:over-%d.png
"$vantorel" render grey.png -o expected-over.png --over plate.png --ul 192,108 "${corners[@]}"
oiiotool expected-over.png --ch R,G,B -o expected-rgb.png over-1.png --ch R,G,B -o over-rgb.png
# No pixel by more than 2 of 255.
idiff -q -fail 0.0079 expected-rgb.png over-rgb.png || { echo "over a background it differs"; exit 1; }
