# Completion of lumivane's commands, options and files for bash (and for zsh, after bashcompinit).
# Nothing is listed here: all words come from the program's own --help, so they are never old.

_lumivane_help() {
  "${COMP_WORDS[0]}" "$@" --help 2>/dev/null
}

_lumivane_commands() {
  _lumivane_help | awk '/^Subcommands:/ { on = 1; next } on && /^  [a-z]/ { print $1 }'
}

_lumivane_options() {
  _lumivane_help "$1" | grep -oE '^ +(-[a-zA-Z],)?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'
}

# The values that an option may take, as {a,b} in its line.
_lumivane_values() {
  _lumivane_help "$1" | grep -E -- "(^| |,)$2[ :]" | grep -oE '[{][^}]*[}]' | head -n 1 |
    tr -d '{}' | tr ',' '\n'
}

_lumivane() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} values
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_lumivane_commands) --help --version" -- "$word")
  elif [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_lumivane_options "${COMP_WORDS[1]}")" -- "$word")
  elif [[ $before == --* ]] && values=$(_lumivane_values "${COMP_WORDS[1]}" "$before") &&
    [ -n "$values" ]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}

complete -o filenames -F _lumivane lumivane
