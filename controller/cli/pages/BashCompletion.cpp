#include <map>

#include "controller/cli/pages/Completion.h"
#include "controller/cli/pages/Hints.h"

namespace controller::cli {

namespace {

constexpr const char* kBegin =
    R"bash(# Completion of vexalink for bash; written by "vexalink completion bash".
# shellcheck shell=bash

# What stands behind a command: its commands and options.
_vexalink_words() {
  case $1 in
)bash";

constexpr const char* kMiddle = R"bash(  esac
}

# What may be a value: "words ...", "files", "events" or "none"; nothing for what takes none.
_vexalink_values() {
  case $1 in
)bash";

constexpr const char* kEnd = R"bash(  esac
}

# The events of the running controller, by id and by description.
_vexalink_events() {
  local name id description
  while IFS=$'\t' read -r id description; do
    for name in "$id" "$description"; do
      printf -v name %q "$name"
      if [[ $name == "$1"* ]]; then
        COMPREPLY+=("$name")
      fi
    done
  done < <(vexalink completion events 2>/dev/null)
}

_vexalink() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
  local path="" values="" i
  COMPREPLY=()
  # "--option=value" comes in three words.
  if [[ $cur == "=" ]]; then
    cur=""
  elif [[ $prev == "=" ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ ${COMP_WORDS[i]} != -* && " $(_vexalink_words "$path") " == *" ${COMP_WORDS[i]} "* ]]; then
      path="${path:+$path }${COMP_WORDS[i]}"
    fi
  done
  if [[ $prev == -* ]]; then
    values=$(_vexalink_values "$path:$prev")
  fi
  if [[ -z $values && $cur != -* ]]; then
    values=$(_vexalink_values "$path:")
  fi
  case ${values:-"words $(_vexalink_words "$path")"} in
    events) _vexalink_events "$cur" ;;
    files)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    none) ;;
    *)
      values=${values:-"words $(_vexalink_words "$path")"}
      mapfile -t COMPREPLY < <(compgen -W "${values#words }" -- "$cur")
      ;;
  esac
}

complete -F _vexalink vexalink
)bash";

std::string ValuesText(const Hint& hint) {
  switch (hint.kind) {
    case Hint::Kind::kFiles:
      return "files";
    case Hint::Kind::kEvents:
      return "events";
    case Hint::Kind::kWords:
      return "words " + Join(hint.words);
    default:
      return "none";
  }
}

/// A command and its aliases, as a pattern of `case`.
std::string Pattern(const CommandPage& page, const std::string& more = {}) {
  std::string pattern = '"' + PathOf(page) + more + '"';
  for (const std::string& alias : page.aliases) pattern += " | \"" + alias + more + '"';
  return pattern;
}

std::string WordsCases(const CommandPage& program) {
  std::string text;
  for (const CommandPage* page : AllPages(program)) {
    std::vector<std::string> words = CommandNames(*page);
    for (const OptionPage& option : page->options) {
      words.insert(words.end(), option.names.begin(), option.names.end());
    }
    text += "    " + Pattern(*page) + ") echo \"" + Join(words) + "\" ;;\n";
  }
  return text;
}

std::string ValueCases(const CommandPage& program) {
  std::string text;
  for (const CommandPage* page : AllPages(program)) {
    for (const OptionPage& option : page->options) {
      if (option.value.empty()) continue;
      for (const std::string& name : option.names) {
        text +=
            "    " + Pattern(*page, ':' + name) + ") echo " + ValuesText(HintFor(option)) + " ;;\n";
      }
    }
    if (page->arguments.empty()) continue;
    text += "    " + Pattern(*page, ":") + ") echo " + ValuesText(HintFor(page->arguments[0])) +
            " ;;\n";
  }
  return text;
}

}  // namespace

std::string BashCompletion(const CommandPage& program) {
  return kBegin + WordsCases(program) + kMiddle + ValueCases(program) + kEnd;
}

}  // namespace controller::cli
