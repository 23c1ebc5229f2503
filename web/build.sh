#!/bin/sh
# Fills a folder with the page as it is served: web/build.sh FOLDER. Needs nothing but a shell: the page
# is plain modules, and what it is made of is in this folder.
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
cp "$web"/*.css "$web"/*.svg "$out"
cp -R "$web/src" "$out/src"

# The browser is told of all modules at once, and need not find them one from another.
preloads=$(cd "$web" && find src -name '*.js' ! -name main.js | LC_ALL=C sort |
  sed 's|.*|<link rel="modulepreload" href="&">|')
while IFS= read -r line; do
  if [ "$line" = '<!-- modules -->' ]; then
    printf '%s\n' "$preloads"
  else
    printf '%s\n' "$line"
  fi
done <"$web/index.html" >"$out/index.html"
