#!/bin/sh
# Fills a folder with the page as it is served: web/build.sh FOLDER. Needs nothing but a shell: the page
# is plain modules, and all that it is made of is in this folder.
set -eu
if [ $# -ne 1 ]; then
  echo "usage: $0 FOLDER" >&2
  exit 2
fi
web=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$1"
out=$(cd "$1" && pwd)

# What an earlier build left and is no longer there must not be served.
rm -rf "$out/src" "$out"/*.html "$out"/*.css "$out"/*.svg
cp "$web"/*.html "$web"/*.css "$web"/*.svg "$out"
cp -R "$web/src" "$out/src"
