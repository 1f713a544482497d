# consume.sh WAY SOURCE BUILD PREFIX LIBDIR CMAKE COMPILER
#
# Builds a host's project in one of three ways, runs it, and compares what it prints.
set -e
way=$1 source=$2 build=$3 prefix=$4 libdir=$5 cmake=$6 compiler=$7
consumer=$source/tests/consumer
export CMAKE_BUILD_PARALLEL_LEVEL=2

rm -rf "$build"
mkdir -p "$build"
cd "$build"
case $way in
FindPackage)
    "$cmake" -S "$consumer" -B . -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_PREFIX_PATH="$prefix"
    "$cmake" --build .
    ;;
AddSubdirectory)
    # As shared libraries, which shows that what is public is exported.
    "$cmake" -S "$consumer" -B . -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DKWBASE_SOURCE="$source" -DBUILD_SHARED_LIBS=ON
    "$cmake" --build .
    ;;
PkgConfig)
    export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
    for program in "$source/examples/host.cpp" "$consumer/reader.cpp"; do
        "$compiler" -std=c++20 "$program" $(pkg-config --cflags --libs kwbase-channels) \
            -o "$(basename "$program" .cpp)"
    done
    ;;
esac
./host >host.txt
diff -u "$source/examples/host.txt" host.txt
./reader lamp.plist >reader.txt
diff -u "$consumer/reader.txt" reader.txt
