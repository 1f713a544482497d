# headers.sh COMPILER INSTALLED_INCLUDE_DIRECTORY [QT_INCLUDE_OPTION...]
#
# Compiles each installed header alone against the installed ones: none needs another that is not
# installed, or that its user includes before it.
compiler=$1 installed=$2
shift 2
jobs=$(nproc 2>/dev/null || echo 2)

cd "$installed" || exit 2
headers=$(find . -name '*.h' | sed 's#^\./##' | sort)
[ -n "$headers" ] || exit 2
echo "$headers" | xargs -P "$jobs" -I HEADER sh -c '
    header=$1 compiler=$2
    shift 2
    echo "#include <$header>" | "$compiler" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic \
        -Werror -I "$@" -x c++ - || { echo "not by itself: $header"; exit 1; }
' compile HEADER "$compiler" "$installed" "$@"
