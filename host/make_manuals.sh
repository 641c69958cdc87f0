#!/usr/bin/env bash
# Writes the manual pages of the program and of each command from its own --help.
# Usage: make_manuals.sh HELP2MAN PROGRAM FOLDER
set -euo pipefail
help2man=$1 program=$2 folder=$3
mkdir -p "$folder"

page() {  # page NAME WHAT HELP-OPTION
  "$help2man" --no-info --section 1 --source Lumivane --manual "Lumivane" \
    --name "$2" --help-option "$3" --output "$folder/$1.1.new" "$program"
  # The page is named for what it documents, not for the file that was run.
  sed -e "s/^\\.TH [^ ]* /.TH ${1^^} /" -e "s/^lumivane \\\\- /$1 \\\\- /" "$folder/$1.1.new" > "$folder/$1.1"
  rm "$folder/$1.1.new"
}

"$program" --help | awk '/^Subcommands:/ { on = 1; next } on && /^  [a-z]/ { print $1 }' |
  while read -r command; do
    what=$("$program" --help | sed -n "s/^  $command  *//p" | head -n 1)
    page "lumivane-$command" "${what,}" "$command --help"
  done
# Last, since it stands for all of them.
page lumivane "flat vector pictures of what one eye sees of a scene" --help
