#!/usr/bin/env bash
# Installs the solver peers of `zel bench solver` (CHOLMOD and UMFPACK from SuiteSparse, SuperLU,
# sequential MUMPS) and puts them on OpenBLAS's single-threaded build: Debian's libblas.so.3 and liblapack.so.3 are the reference
# implementations until another provider is selected, and a peer timed on those measures them
# rather than itself. Run as root; prints the BLAS and LAPACK that programs now load.
set -euo pipefail
arch=$(dpkg-architecture -qDEB_HOST_MULTIARCH 2>/dev/null || gcc -print-multiarch)
bash "$(dirname "$0")/install-deps.sh" libopenblas0-serial libsuperlu-dev libmumps-seq-dev
for name in libblas.so.3 liblapack.so.3; do
  choice=/usr/lib/$arch/openblas-serial/$name
  if [[ ! -e $choice ]]; then
    echo "install-bench-peers: $choice is missing after installing libopenblas0-serial" >&2
    exit 1
  fi
  update-alternatives --quiet --set "$name-$arch" "$choice"
done
for name in libblas.so.3 liblapack.so.3; do
  printf '%-15s -> %s\n' "$name" "$(readlink -f "/usr/lib/$arch/$name")"
done
