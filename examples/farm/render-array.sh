#!/bin/sh
#SBATCH --job-name=render
#SBATCH --cpus-per-task=4
#
# Renders one chunk of a range of frames, as a task of a job array:
#
#     sbatch --array=0-14 render-array.sh ball.kwdoc 0 149 10 frames
#
# renders frames 0 to 149 of ball.kwdoc into the folder frames, in 15 tasks of 10. Task k of the array
# has the k-th chunk; tasks behind the last frame do nothing. A task that is sent again renders what is
# missing. The exit code is kwedit's: 0 when the chunk is whole.
set -eu
if [ $# -ne 5 ]; then
    echo "usage: $0 DOC FIRST LAST CHUNK DIR" >&2
    exit 2
fi
document=$1 first=$2 last=$3 chunk=$4 folder=$5

# Queues name the task differently; one that counts from 1 is given --array=0-... as well, or a 1 here.
task=${SLURM_ARRAY_TASK_ID:-${PBS_ARRAY_INDEX:-${TASK:?"no task of an array"}}}
from=$((first + (task - ${FIRST_TASK:-0}) * chunk))
to=$((from + chunk - 1))
[ "$to" -le "$last" ] || to=$last
[ "$from" -le "$to" ] || exit 0

exec kwedit --render "$document" --frames "$from-$to" -o "$folder" \
    --jobs "${SLURM_CPUS_PER_TASK:-1}" --skip-existing --strict
