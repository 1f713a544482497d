# farm.sh SOURCE_DIRECTORY PROGRAM_DIRECTORY WORKING_DIRECTORY
#
# Renders seven frames as the tasks of a job array would, chunk by chunk.
set -e
source=$1 work=$3
PATH=$2:$PATH
export PATH
unset SLURM_ARRAY_TASK_ID PBS_ARRAY_INDEX SLURM_CPUS_PER_TASK
script=$source/examples/farm/render-array.sh

rm -rf "$work"
mkdir -p "$work"
cp "$source/samples/bouncing-ball.kwdoc" "$work"
cd "$work"
for task in 0 1 2 3; do
    SLURM_ARRAY_TASK_ID=$task sh "$script" bouncing-ball.kwdoc -2 4 3 frames
done
ls frames >found
for frame in -0002 -0001 0000 0001 0002 0003 0004; do
    echo "bouncing-ball.$frame.png"
done | sort >expected
sort found | diff -u expected -

# A task that is sent again renders what is missing and leaves the rest alone.
rm frames/bouncing-ball.0001.png
touch -d 2001-01-01 frames/*
TASK=2 FIRST_TASK=1 sh "$script" bouncing-ball.kwdoc -2 4 3 frames
[ "$(find frames -newermt 2002-01-01 -name '*.png')" = frames/bouncing-ball.0001.png ]

if sh "$script" bouncing-ball.kwdoc 0 4 3 2>message; then
    echo "too few words are taken" >&2
    exit 1
fi
grep -q '^usage: ' message
