# headers.sh COMPILER INSTALLED_INCLUDE_DIRECTORY SOURCE_DIRECTORY
#
# Compiles each installed header alone against the installed ones, and each header that stays in
# the source tree against the source tree.
compiler=$1 installed=$2 source=$3
jobs=$(nproc 2>/dev/null || echo 2)

# Reads names of headers; compiles each with the given include directory.
compile() {
    xargs -P "$jobs" -I HEADER sh -c '
        echo "#include <$3>" | "$1" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror \
            -I "$2" -x c++ - || { echo "not by itself: $3"; exit 1; }
    ' compile "$compiler" "$1" HEADER
}

cd "$installed" || exit 2
public=$(find . -name '*.h' | sed 's#^\./##' | sort)
[ -n "$public" ] || exit 2
echo "$public" | compile "$installed" || exit 1

cd "$source" || exit 2
find KWFoundation KWBase apps -name '*.h' | sort | while read -r header; do
    [ -e "$installed/$header" ] || echo "$header"
done | compile "$source"
