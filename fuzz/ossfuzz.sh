#!/usr/bin/env bash
# Builds every fuzzer into $OUT with its seeds, as OSS-Fuzz asks: with $CXX, $CXXFLAGS and $LIB_FUZZING_ENGINE.
set -eu
cd "$(dirname "$0")/.."

cmake -S . -B "$WORK/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER="$CC" \
    -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" \
    -DZK_FUZZING_ENGINE="$LIB_FUZZING_ENGINE" -DZK_BUILD_TESTS=OFF -DZK_BUILD_EXAMPLES=OFF -DZK_WARNINGS_AS_ERRORS=OFF \
    -DCMAKE_BUILD_RPATH='$ORIGIN/lib'
mkdir -p "$OUT/lib"
for source in fuzz/*_fuzz.cpp; do
    name=$(basename "$source" _fuzz.cpp)
    ninja -C "$WORK/build" "${name}_fuzz"
    cp "$WORK/build/bin/${name}_fuzz" "$OUT"
    (cd "fuzz/corpora/$name" && zip -q -r "$OUT/${name}_fuzz_seed_corpus.zip" .)
    # Shared libraries that the machine that runs it does not have.
    ldd "$WORK/build/bin/${name}_fuzz" | grep -oE '/\S*/lib(ZK_Base|cjson|orocos-kdl)\S*' | xargs -I{} cp -L {} "$OUT/lib"
done
