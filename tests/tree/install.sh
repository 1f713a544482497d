# install.sh CMAKE BUILD_DIRECTORY PREFIX LIBDIR EXPECTED...
#
# Installs the build and compares the names of what is there with the expected ones.
set -e
cmake=$1 build=$2 prefix=$3 libdir=$4
shift 4
rm -rf "$prefix"
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
LC_ALL=C sort "$@" >"$prefix/../expected-files"
cd "$prefix"
find . ! -type d | sed -e 's#^\./##' -e "s#^$libdir/#lib/#" \
    -e 's#Targets-[a-z]*\.cmake$#Targets-<configuration>.cmake#' | LC_ALL=C sort >../installed-files
diff -u ../expected-files ../installed-files
