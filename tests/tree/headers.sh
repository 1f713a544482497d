# headers.sh COMPILER INSTALLED_INCLUDE_DIRECTORY SOURCE_DIRECTORY [QT_INCLUDE_OPTION...]
#
# Compiles each installed header alone against the installed ones, and each header that stays in
# the source tree against the source tree; without Qt, those of the views are left out.
compiler=$1 installed=$2 source=$3
shift 3
jobs=$(nproc 2>/dev/null || echo 2)

# compile DIRECTORY [OPTION...]: reads names of headers; compiles each against the directory.
compile() {
    xargs -P "$jobs" -I HEADER sh -c '
        header=$1 compiler=$2
        shift 2
        echo "#include <$header>" | "$compiler" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic \
            -Werror -I "$@" -x c++ - || { echo "not by itself: $header"; exit 1; }
    ' compile HEADER "$compiler" "$@"
}

cd "$installed" || exit 2
public=$(find . -name '*.h' | sed 's#^\./##' | sort)
[ -n "$public" ] || exit 2
echo "$public" | compile "$installed" "$@" || exit 1

cd "$source" || exit 2
find KWFoundation KWBase KWDesktop apps -name '*.h' | sort | while read -r header; do
    [ ! -e "$installed/$header" ] || continue
    # Headers that are not found, as Qt's are not, come out under their bare names.
    if [ $# -eq 0 ] && "$compiler" -std=c++20 -M -MG -I . -x c++ "$header" | grep -q ' Q[A-Z]'; then
        continue
    fi
    echo "$header"
done | compile "$source" "$@"
