#!/usr/bin/env bash
# completion_test.sh COMPLETION_FILE TARNWICK_CLI
# The bash completion of tarnwick-cli, loaded as bash-completion loads it: what a Tab offers after
# each command line, and that every command and option of tarnwick-cli --help is offered.
set -uo pipefail
completion="$1" cli="$2"
source "$(dirname "$0")/help_words.sh"
source /usr/share/bash-completion/bash_completion
source "$completion"

failures=0
Fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# Offered LINE: the candidates for a Tab at the end of LINE, sorted, on one line.
Offered() {
  COMP_LINE="$1"
  COMP_POINT=${#COMP_LINE}
  read -ra COMP_WORDS <<<"$COMP_LINE"
  [[ $COMP_LINE == *" " ]] && COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  _tarnwick_cli 2>/dev/null
  printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' '
}

[[ "$(complete -p tarnwick-cli 2>&1)" == "complete -F _tarnwick_cli tarnwick-cli" ]] ||
  Fail "complete -p tarnwick-cli: $(complete -p tarnwick-cli 2>&1)"

files="$(mktemp -d)"
trap 'rm -rf "$files"' EXIT
mkdir "$files/folder"
touch "$files/actor.fbx" "$files/actor.glb" "$files/notes.txt"

# Each case: the command line, then what Tab offers at its end.
cases=(
  "tarnwick-cli conv|convert"
  "tarnwick-cli |convert extract files games list"
  "tarnwick-cli --format |fbx glb"
  "tarnwick-cli extract '*' --out-dir out --images |png"
  "tarnwick-cli convert 'actors\\*' --out-dir out --format g|glb"
  "tarnwick-cli --game-dir list l|list"
  "tarnwick-cli --jobs 4 --game g|"
  "tarnwick-cli list a|"
  "tarnwick-cli --out-|--out-dir"
  "tarnwick-cli --data-dir $files/|$files/folder"
  "tarnwick-cli convert a -o $files/|$files/actor.fbx $files/actor.glb $files/folder"
)
for entry in "${cases[@]}"; do
  line="${entry%|*}" expected="${entry##*|}"
  actual="$(Offered "$line")"
  [ "$actual" == "$expected" ] || Fail "after \"$line\" Tab offers \"$actual\", not \"$expected\""
done

# Nothing that --help lists may be missing from what Tab offers first.
offered=" $(Offered "tarnwick-cli -") $(Offered "tarnwick-cli ") "
for word in $(HelpWords "$cli"); do
  [[ $offered == *" $word "* ]] || Fail "tarnwick-cli --help lists $word, which Tab doesn't offer"
done

echo "completion: $failures failed"
[ "$failures" -eq 0 ]
