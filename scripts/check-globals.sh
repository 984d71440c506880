#!/usr/bin/env bash
# Fails when the core library holds writable global or static data. Two
# simulations may grow at once in two threads, so the only writable objects
# allowed are function-local statics initialised once under C++'s
# thread-safe static initialisation (they come with a guard variable) and
# never written after.
# Usage: check-globals.sh LIBDLA_CORE.a
set -u
lib=$1
[ -f "$lib" ] || { echo "FAIL: no library $lib" >&2; exit 1; }
# Objects in .data or .bss (not .data.rel.ro, which is read-only once
# loaded), less the sanitizers' own bookkeeping.
names=$(objdump -t "$lib" | awk '$0 ~ / \.(data|bss)/ && $0 !~ /\.data\.rel\.ro/ && $0 !~ / l    d / { print $NF }' |
  grep -v -E '^(DW\.ref\.|__odr_asan|__asan_|__tsan_|__ubsan_|__sancov_)' | c++filt | sort -u)
[ -n "$names" ] || { echo "FAIL: objdump listed nothing in $lib" >&2; exit 1; }
bad=0
while IFS= read -r name; do
  # AddressSanitizer's own indicators, one a global, in a sanitizer build.
  case "$name" in "guard variable for "* | __odr_asan.*) continue ;; esac
  grep -qxF "guard variable for $name" <<<"$names" && continue
  echo "FAIL: writable global or static data in the core: $name" >&2
  bad=1
done <<<"$names"
exit $bad
