# consume.sh WAY SOURCE BUILD PREFIX LIBDIR CMAKE COMPILER VIEWS
#
# Builds a host's project in one of three ways, runs it, and compares what it prints. VIEWS is ON or
# OFF: whether there are views to be used. The way Shared takes the host that is in PREFIX already,
# built with shared libraries.
set -e
way=$1 source=$2 build=$3 prefix=$4 libdir=$5 cmake=$6 compiler=$7 views=$8
consumer=$source/tests/consumer
export CMAKE_BUILD_PARALLEL_LEVEL=2

rm -rf "$build"
mkdir -p "$build"
cd "$build"
case $way in
FindPackage)
    "$cmake" -S "$consumer" -B . -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DVIEWS="$views" \
        -DCMAKE_PREFIX_PATH="$prefix"
    "$cmake" --build .
    ;;
AddSubdirectory)
    # As shared libraries. Of the views, which take their time, nothing but their user is compiled.
    "$cmake" -S "$consumer" -B . -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DVIEWS="$views" \
        -DKWBASE_SOURCE="$source" -DBUILD_SHARED_LIBS=ON -DKWBASE_UNITE=50
    "$cmake" --build . --target host reader interpreter
    if [ "$views" != OFF ]; then
        "$cmake" --build . --target CMakeFiles/viewer.dir/viewer.cpp.o
        views=OFF
    fi
    ;;
Shared)
    ln -s "$prefix"/* .
    ;;
PkgConfig)
    export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
    build() {
        "$compiler" -std=c++20 "$2" $(pkg-config --cflags --libs "$1") -o "$(basename "$2" .cpp)"
    }
    build kwbase-channels "$source/examples/host.cpp"
    build kwbase-channels "$consumer/reader.cpp"
    build kwbase-channels "$consumer/interpreter.cpp"
    [ "$views" = OFF ] || build kwbase-views "$consumer/viewer.cpp"
    ;;
esac
./host >host.txt
diff -u "$source/examples/host.txt" host.txt
./reader lamp.plist >reader.txt
diff -u "$consumer/reader.txt" reader.txt
[ "$(./interpreter)" = 6 ]
if [ "$views" != OFF ]; then
    mkdir -m 700 run
    QT_SCALE_FACTOR=1 XDG_RUNTIME_DIR=$PWD/run ./viewer >viewer.txt
    diff -u "$consumer/viewer.txt" viewer.txt
fi
