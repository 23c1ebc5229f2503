#!/bin/sh
# Runs a part of the tests of the page:
#
#   units     what needs no browser
#   modules   fetches what package-lock.json names, once, into VEXALINK_NODE_MODULES
#   pages     the page in Chromium, against VEXALINK_PROGRAM
set -eu
tests=$(cd "$(dirname "$0")" && pwd)
node=${VEXALINK_NODE:-node}
case ${1:-} in
  units) exec "$node" --test "$tests"/unit/*.test.mjs ;;
  pages) exec "$node" --test "$tests"/pages/*.test.mjs ;;
  modules)
    folder=$(dirname "${VEXALINK_NODE_MODULES:?is to name the folder node_modules}")
    mkdir -p "$folder"
    # The same list is already there: nothing to fetch.
    if [ -d "$folder/node_modules" ] && cmp -s "$tests/package-lock.json" "$folder/package-lock.json"; then exit 0; fi
    cp "$tests/package.json" "$folder"
    # By a name of its own until it is all there.
    cp "$tests/package-lock.json" "$folder/npm-shrinkwrap.json"
    (cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund)
    mv "$folder/npm-shrinkwrap.json" "$folder/package-lock.json"
    ;;
  *)
    sed -n '2,/^set /{/^set /d;s/^# \{0,1\}//;p}' "$0" >&2
    exit 2
    ;;
esac
