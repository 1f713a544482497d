# format.sh SOURCE_DIRECTORY CLANG_FORMAT [-i]
#
# Names the C++ sources that clang-format would change, or with -i changes them. Other versions than 14
# lay some lines out differently, so without that one there is nothing to compare with: 77, skipped.
cd "$1" || exit 2
program=$2
case $("$program" --version 2>/dev/null) in
*"version 14."*) ;;
*)
    echo "clang-format 14 is not installed"
    exit 77
    ;;
esac
folders=
for folder in KWFoundation KWBase KWDesktop apps tests benchmarks fuzz examples; do
    [ -d "$folder" ] && folders="$folders $folder"
done
sources=$(find $folders -name '*.h' -o -name '*.cpp' | sort)
if [ "$3" = -i ]; then
    "$program" -i $sources
else
    # Many files to a process, several processes at once: one for each file takes minutes.
    echo "$sources" | xargs -n 32 -P "$(nproc 2>/dev/null || echo 2)" \
        "$program" --dry-run -Werror 2>&1 |
        sed -n 's/:[0-9]*:[0-9]*: error: .*/ is not formatted/p' | sort -u | grep . && exit 1
    exit 0
fi
