#!/usr/bin/env bash
# Lets the apache-arrow package read a stream and compares the cells: check.sh WORK_FOLDER SAMPLES_PROGRAM
# Ends with 77, which ctest shows as skipped, when there is no Node.js or the package cannot be installed.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$1
samples=$2

command -v node >/dev/null && command -v npm >/dev/null || { echo "no Node.js"; exit 77; }
mkdir -p "$work"
if ! cmp -s "$here/package-lock.json" "$work/installed-lock.json"; then
    cp "$here/package.json" "$here/package-lock.json" "$work/"
    (cd "$work" && npm ci --no-audit --no-fund --loglevel=error) || { echo "apache-arrow cannot be installed: is the network reachable?"; exit 77; }
    cp "$here/package-lock.json" "$work/installed-lock.json"
fi
cp "$here/cells.mjs" "$work/"
"$samples" "$work/sample.arrows" "$work/expected.txt"
node "$work/cells.mjs" "$work/sample.arrows" >"$work/found.txt"
cmp "$work/expected.txt" "$work/found.txt"
printf 'BILL_CODE\tSITE\tFEE\n771000001\t北京\t2.5\n771000002\t北京\tnull\n771000003\tnull\t-0.05\n' >"$work/expected.txt"
node "$work/cells.mjs" "$here/../example.arrows" | cmp - "$work/expected.txt"
