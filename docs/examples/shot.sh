# The shot that render-shot.sbatch renders. File names are relative to the folder in which sbatch is called, which all
# nodes share; %04d stands for the frame.
first=1001
last=1096
chunk=16 # frames per task
layer=sign.png
output=out/shot.%04d.png
options=(--over plate/plate.%04d.png --corners track.csv)
