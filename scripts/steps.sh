# shellcheck shell=bash
# What run.sh and test.sh share: telling what they do, and building. Sourced, from the repository's
# top folder.

# Taken up when a build folder is configured for the first time.
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi
export NINJA_STATUS='  [%f/%t] '

# step TEXT...: one line that says what happens now.
step() {
  printf '==> %s\n' "$*"
}

# configure PRESET [-DNAME=VALUE...]: what cmake says is shown only if it fails.
configure() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! cmake --preset "$preset" "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "configuring failed; if build/$preset was made by another cmake or in another place," \
      "delete it" >&2
    return 1
  fi
  rm -f "$log"
}

# build PRESET [ARGUMENT...]: ninja's progress goes to the terminal.
build() {
  local preset=$1
  shift
  cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
}
