#!/usr/bin/env bash
# The zel command answered as a user would call it: exit status 0 for what works, 2 with a message
# naming the problem for every usage error, and what each command prints.
# Usage: check_cli.sh ZEL VERSION BENCH_BUILT(0|1)
set -u
zel=$1
version=$2
bench_built=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# run CMD...: runs it, keeping its status and both streams for the checks that follow.
run() {
  last="$*"
  "$@" >"$scratch/out" 2>"$scratch/err"
  status=$?
}
fail() {
  echo "FAIL: $last: $1"
  echo "--- stdout"; head -20 "$scratch/out"
  echo "--- stderr"; head -20 "$scratch/err"
  failures=$((failures + 1))
}
status_is() { [[ $status -eq $1 ]] || fail "exit status $status, expected $1"; }
# says STREAM REGEX / lacks STREAM REGEX: what the last command printed on out or err.
says() { grep -Eq -- "$2" "$scratch/$1" || fail "$1 lacks /$2/"; }
lacks() { ! grep -Eq -- "$2" "$scratch/$1" || fail "$1 has /$2/"; }
# usage_error REGEX CMD...: exit status 2, the message on stderr, the --help hint, nothing on stdout.
usage_error() {
  local pattern=$1
  shift
  run "$@"
  status_is 2
  says err "$pattern"
  says err "Try 'zel[a-z ]*--help'|usage: zel"
  [[ ! -s $scratch/out ]] || fail "printed on stdout"
}

# The tool itself.
run "$zel" --version
status_is 0; says out "^zel ${version//./\\.}\$"; says out "^libzel_core [0-9]+\.[0-9]+\.[0-9]+, build [0-9]{8}\$"
run "$zel" --help
status_is 0; says out '^usage: zel '; says out '^  info '; says out '^  bench '; says out '^  solve '
run "$zel"
status_is 2; says err '^usage: zel '
usage_error "zel: unknown command 'nosuch'" "$zel" nosuch
usage_error "zel: unknown option '--bogus'" "$zel" --bogus
usage_error "zel: unknown option '-x'" "$zel" -x info
usage_error "zel: option '--version' takes no value" "$zel" --version=2

# zel info: labels, arguments, and warnings about values the library does not understand.
run "$zel" info --help
status_is 0; says out '^usage: zel info'
usage_error "zel info: unexpected argument 'extra'" "$zel" info extra
usage_error "zel info: unknown option '--verbose'" "$zel" info --verbose
run env -i PATH="$PATH" "$zel" info
status_is 0; says out 'keys of ZEL_DOMAIN_NUM_THREADS'; lacks out '^  ZEL_DOMAIN_BLAS'; lacks err 'warning'
run env -i PATH="$PATH" ZEL_CBWR=bogus "$zel" info
status_is 0; says err "warning: ZEL_CBWR='bogus' names no mode"; says out 'reproducibility \(ZEL_CBWR\) +OFF'
run env -i PATH="$PATH" ZEL_CBWR=AVX2,STRICT "$zel" info
status_is 0; lacks err 'warning'; says out 'reproducibility \(ZEL_CBWR\) +AVX2,STRICT'
run env -i PATH="$PATH" ZEL_CBWR=AVX2,strict "$zel" info
status_is 0; says err "warning: ZEL_CBWR='AVX2,strict' has a suffix"
# The domain list is split as the library splits it: the good key is recorded, the unknown one warned about.
run env -i PATH="$PATH" ZEL_DOMAIN_NUM_THREADS="ZEL_DOMAIN_BLAS=3, ZEL_DOMAIN_BOGUS=2;ZEL_DOMAIN_FFT=x" "$zel" info
status_is 0
says out 'BLAS \(ZEL_DOMAIN_BLAS=n\) +3$'; says out 'FFT \(ZEL_DOMAIN_FFT=n\) +1$'; says out 'VML \(ZEL_DOMAIN_VML=n\) +not set$'
says err "warning: ZEL_DOMAIN_NUM_THREADS='ZEL_DOMAIN_BOGUS=2' has an unknown key"
says err "warning: ZEL_DOMAIN_NUM_THREADS='ZEL_DOMAIN_FFT=x' has no count"
lacks err 'ZEL_DOMAIN_BLAS=3'
run env -i PATH="$PATH" ZEL_NUM_THREADS=two ZEL_DYNAMIC=0 ZEL_NUM_THREAD=4 ZEL_DISABLE_FAST_MM=0 "$zel" info
status_is 0
says out 'all domains \(ZEL_NUM_THREADS\) +1$'
says err "warning: ZEL_NUM_THREADS='two' is not a count"
says err "warning: ZEL_DYNAMIC='0' is neither TRUE nor FALSE"
says err 'warning: ZEL_NUM_THREAD is not a variable the library reads'
says err "warning: ZEL_DISABLE_FAST_MM='0' still disables"
says out 'fast memory manager +off'

# zel solve: every bad request is refused before anything is read or solved (the systems
# themselves are tested by test_solve_command).
run "$zel" solve --help
status_is 0; says out '^usage: zel solve '; for word in rhs out type ordering refine nrhs size; do says out "--$word"; done
usage_error "zel solve: --type wants one of auto, spd, hpd, sid, hid, csym, unsym, not 'lu'" "$zel" solve --type lu
usage_error "zel solve: --ordering wants one of auto, amd, nd, not 'metis'" "$zel" solve --ordering=metis
for bad in -1 11 x ''; do
  usage_error "zel solve: --refine wants a whole number from 0 to 10, not '$bad'" "$zel" solve --refine "$bad"
done
usage_error "zel solve: --nrhs wants a whole number from 1 to 10000, not '0'" "$zel" solve --nrhs 0
usage_error "zel solve: --size wants a whole number from 1 to 500, not '501'" "$zel" solve --size 501
usage_error "zel solve: option '--out' needs a value" "$zel" solve --out
usage_error "zel solve: unknown option '--bogus'" "$zel" solve --bogus
usage_error "zel solve: unexpected argument 'b.mtx'" "$zel" solve a.mtx b.mtx
usage_error "zel solve: --size applies to the built-in problem, not to a file" "$zel" solve a.mtx --size 4
usage_error "zel solve: --nrhs applies to generated right-hand sides, not to --rhs" "$zel" solve --rhs b.mtx --nrhs 2
# A run off a terminal prints the report alone: no progress text on standard error.
run "$zel" solve --size 4
status_is 0; says out '^residual +[0-9]'; [[ ! -s $scratch/err ]] || fail "printed on stderr off a terminal"

# zel bench: the suites and their sections, and every bad request answered before anything runs.
run "$zel" bench --help
status_is 0
for word in dense sparse getrf potrf getri getrs transpose syrk; do says out "^ +$word "; done
run "$zel" bench
status_is 2; says err 'name a suite'; says err '^  dense '; says err '^    transpose '
usage_error "zel bench: unknown suite 'nosuch'" "$zel" bench nosuch
usage_error "zel bench: unknown option '--fast'" "$zel" bench --fast
run "$zel" bench dense --help
status_is 0; says out '^usage: zel bench dense '; says out '[-]-sizes'; says out '^  getrs '
run "$zel" bench sparse --help
status_is 0; says out '^usage: zel bench sparse '; lacks out '[-]-sizes'; says out '^  syrk '
# The solver suite has the most sections: every one listed, the last one selectable.
run "$zel" bench solver --help
status_is 0
for word in laplace3d laplace2d matrices unsym3d unsym2d unsym_matrices kkt indef_matrices; do says out "^  $word "; done
usage_error "zel bench solver: unknown section 'nosuch'" "$zel" bench solver --section indef_matrices,nosuch
for bad in abc 0 -3 4,,8 4, ,4 1025 4x 99999999999999999999 ''; do
  usage_error "zel bench dense: --sizes wants .*, not '$bad'" "$zel" bench dense --sizes "$bad"
done
usage_error "--sizes wants .*, not '1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32,33'" \
  "$zel" bench dense --sizes=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32,33
usage_error "zel bench dense: option '--sizes' needs a value" "$zel" bench dense --sizes
for bad in 0 -1 x 1001; do
  usage_error "zel bench sparse: --repeats wants a whole number from 1 to 1000, not '$bad'" \
    "$zel" bench sparse --repeats "$bad"
done
usage_error "zel bench dense: unknown option '--bogus'" "$zel" bench dense --bogus
usage_error "zel bench dense: unknown option '--bogus'" "$zel" bench dense --sizes 4 --bogus=1
usage_error "zel bench dense: unexpected argument 'extra'" "$zel" bench dense extra
usage_error "zel bench sparse: unknown section 'nosuch'" "$zel" bench sparse --section nosuch
says err '^  transpose '
usage_error "zel bench sparse: unknown section 'nosuch'" "$zel" bench sparse --section syrk,nosuch
usage_error "zel bench sparse: option '--sizes' does not apply to the sparse suite" "$zel" bench sparse --sizes 4
usage_error "zel bench sparse: option '--quick' does not apply" "$zel" bench sparse --quick
usage_error "zel bench sparse: option '--help' takes no value" "$zel" bench sparse --help=yes

# A run: only the section asked for, at the size asked for (in the build tree zel-bench sits
# beside zel; without it, zel says where it looked).
run "$zel" bench dense --section getrf --sizes 4 --repeats 1 --quick
if [[ $bench_built == 1 ]]; then
  status_is 0
  says out '^getrf +d +4 '; says out '^getrf +z +4 '; lacks out '^(potrf|getri|getrs) '; lacks out '^[a-z]+ +[dz] +8 '
  # Progress lines go to a terminal only: none into a file, one per precision and size on a
  # terminal (script(1) gives the run one).
  lacks err '\[ *[0-9.]+ s\]'
  if command -v script >/dev/null; then
    run script -qec "$zel bench dense --section potrf --sizes 4,8 --repeats 1 --quick >/dev/null" /dev/null
    status_is 0
    for progress in 'd, n = 4' 'd, n = 8' 'z, n = 4' 'z, n = 8'; do says out "^\[ *[0-9.]+ s\] dense: $progress, batch of "; done
  fi
else
  status_is 1; says err 'zel bench: the benchmark program is not installed \(looked for .*/zel-bench\)'
fi

if ((failures)); then
  echo "$failures check(s) failed"
  exit 1
fi
echo "all zel command-line checks passed"
