# install.sh CMAKE BUILD_DIRECTORY PREFIX LIBDIR EXPECTED
#
# Installs the build and compares the names of what is there with the expected ones.
set -e
rm -rf "$3"
"$1" --install "$2" --prefix "$3" >/dev/null
cd "$3"
find . ! -type d | sed -e 's#^\./##' -e "s#^$4/#lib/#" \
    -e 's#Targets-[a-z]*\.cmake$#Targets-<configuration>.cmake#' | LC_ALL=C sort >../installed-files
diff -u "$5" ../installed-files
