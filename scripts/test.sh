#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: the unit tests, the
# batch program's tests, the desktop program under Xvfb and the real file
# readers; then the core and its unit tests again with AddressSanitizer and
# UndefinedBehaviorSanitizer, and with ThreadSanitizer; last a short run of
# the file-reader fuzzers.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --test
scripts/build.sh
# The default suite, then the soak (60 s of random keys and menu choices).
(cd build && ctest --output-on-failure -j2 -LE soak && ctest --output-on-failure -L soak)

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DDLA_SANITIZE=ON -DDLA_BUILD_GUI=OFF -DDLA_BUILD_BENCH=OFF \
  -DDLA_PYTHON=OFF >/dev/null
cmake --build build-asan -j"$(nproc)"
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j2 -L unit)

# The same under ThreadSanitizer, optimised as released: two simulations
# grown at once in two threads (dla_threads_tests) must touch no memory in
# common. A race reported fails the test it shows in (exit code 66).
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDLA_TSAN=ON -DDLA_BUILD_GUI=OFF -DDLA_BUILD_BENCH=OFF >/dev/null
cmake --build build-tsan -j"$(nproc)"
(cd build-tsan && TSAN_OPTIONS=halt_on_error=1 ctest --output-on-failure -j2 -L unit)

# The file readers under libFuzzer (clang, both sanitizers), a short run.
scripts/fuzz.sh
