#!/usr/bin/env bash
# Installs into a temporary prefix, moves it, and uses the copy as a user would: bin/zel info,
# --version and a small solve, a C program built through pkg-config and one through
# find_package(Zel), each run.
# The consumers link with --as-needed, as many toolchains do by default, to check that both
# objects stay on the link line while the libraries after them are still dropped when unused.
# Reuses a Release build (the one in $CHECK_INSTALL_BUILD, else build/) when there is one; otherwise
# builds the library alone in build-install-check/.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${CHECK_INSTALL_BUILD:-build}
if ! grep -qs '^CMAKE_BUILD_TYPE:STRING=Release$' "$build/CMakeCache.txt"; then
  build=build-install-check
  cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZEL_BUILD_TESTS=OFF -DZEL_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$build" -j2 --target zel_core zel_sequential zel

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/staged" >/dev/null
# Nothing may depend on the prefix it was installed to.
mv "$work/staged" "$work/prefix"
prefix=$work/prefix
libdir=$(dirname "$(find "$prefix" -name libzel_core.so.2 | head -1)")
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

echo "== installed files"
for file in bin/zel include/zel.h include/zel/version.h share/doc/zel/LICENSE share/doc/zel/README.md \
            share/doc/zel/docs/objects.md share/doc/zel/examples/batched_lu.c share/doc/zel/examples/sparse_product.c; do
  [[ -e $prefix/$file ]] || fail "$file is not installed"
done
[[ ! -e $prefix/bin/zel-bench ]] || fail "zel-bench is installed without ZEL_INSTALL_BENCH"
[[ -z $(find "$prefix" -name '*.in') ]] || fail "templates (*.in) are installed"

echo "== $prefix/bin/zel"
needed=$(readelf -d "$prefix/bin/zel" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | tr '\n' ' ')
echo "needs: $needed"
for name in $needed; do
  case $name in
    libzel_core.so.2 | libzel_sequential.so.2 | libc.so.6 | libm.so.6 | ld-linux-*) ;;
    *) fail "bin/zel needs $name, which the library does not" ;;
  esac
done
readelf -d "$prefix/bin/zel" | grep -q 'R.*PATH.*\$ORIGIN/' || fail "bin/zel has no \$ORIGIN run path"
env -u LD_LIBRARY_PATH "$prefix/bin/zel" --version || fail "bin/zel --version"
env -u LD_LIBRARY_PATH "$prefix/bin/zel" info >"$work/info.txt" || fail "bin/zel info"
head -3 "$work/info.txt"
grep -q '^processor' "$work/info.txt" || fail "bin/zel info printed no processor section"
# The solve runs through both objects: the core's factorisation and the layer's solve driver.
env -u LD_LIBRARY_PATH "$prefix/bin/zel" solve --size 10 >"$work/solve.txt" || fail "bin/zel solve"
grep '^residual' "$work/solve.txt" || fail "bin/zel solve printed no residual"
set +e
env -u LD_LIBRARY_PATH "$prefix/bin/zel" bench dense 2>"$work/bench.txt"
status=$?
set -e
[[ $status -eq 1 ]] && grep -q 'not installed' "$work/bench.txt" ||
  fail "zel bench without zel-bench: status $status, $(cat "$work/bench.txt")"

# Only the core is called, so --as-needed would drop the layer the core calls back into.
cat >"$work/core_only.c" <<'EOF'
#include <stdio.h>
#include <zel.h>
#if ZEL_VERSION < ZEL_VERSION_NUMBER(2, 0, 0)
#error "zel/version.h gives no version"
#endif
int main(void)
{
    zel_version v;
    zel_serv_get_version(&v);
    printf("headers %s, library %d.%d, %s\n", ZEL_VERSION_STRING, (int)v.major_version, (int)v.minor_version,
           zel_sparse_status_name(ZEL_SPARSE_STATUS_ALLOC_FAILED));
    return v.major_version != ZEL_VERSION_MAJOR;
}
EOF

# needs PROGRAM: both objects in NEEDED and libm, linked after them but unused, not.
check_needed() {
  local dynamic
  dynamic=$(readelf -d "$1")
  grep -q 'libzel_core.so.2' <<<"$dynamic" || fail "$1 does not keep libzel_core.so.2"
  grep -q 'libzel_sequential.so.2' <<<"$dynamic" || fail "$1 does not keep libzel_sequential.so.2"
  ! grep -q 'libm.so' <<<"$dynamic" || fail "$1 keeps an unused libm: --no-as-needed leaks past the objects"
}

echo "== pkg-config consumers"
export PKG_CONFIG_PATH=$libdir/pkgconfig
echo "pkg-config zel: $(pkg-config --modversion zel): $(pkg-config --libs zel)"
for example in batched_lu sparse_product; do
  cc -std=c99 -Wall -Werror "$prefix/share/doc/zel/examples/$example.c" -o "$work/$example" \
    -Wl,--as-needed $(pkg-config --cflags --libs zel) -lm -Wl,-rpath,"$libdir"
  "$work/$example" >"$work/$example.txt" || fail "$example (pkg-config) failed"
  head -2 "$work/$example.txt"
done
cc -std=c99 -Wall -Werror "$work/core_only.c" -o "$work/core_only" -Wl,--as-needed $(pkg-config --cflags --libs zel) \
  -lm -Wl,-rpath,"$libdir"
"$work/core_only" || fail "core_only (pkg-config) failed"
check_needed "$work/core_only"

echo "== find_package consumer"
mkdir "$work/consumer"
cp "$work/core_only.c" "$prefix/share/doc/zel/examples/sparse_product.c" "$work/consumer/"
cat >"$work/consumer/CMakeLists.txt" <<'EOF'
cmake_minimum_required(VERSION 3.25)
project(consumer C)
find_package(Zel 2 REQUIRED)
add_executable(core_only core_only.c)
target_link_libraries(core_only PRIVATE Zel::zel m)
add_executable(sparse_product sparse_product.c)
target_link_libraries(sparse_product PRIVATE Zel::zel)
EOF
cmake -S "$work/consumer" -B "$work/consumer/build" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_EXE_LINKER_FLAGS=-Wl,--as-needed >/dev/null
cmake --build "$work/consumer/build" >/dev/null
"$work/consumer/build/core_only" || fail "core_only (find_package) failed"
"$work/consumer/build/sparse_product" >/dev/null || fail "sparse_product (find_package) failed"
check_needed "$work/consumer/build/core_only"

if ((failures)); then
  echo "check-install: $failures check(s) failed"
  exit 1
fi
echo "check-install: the installed copy works from $prefix"
