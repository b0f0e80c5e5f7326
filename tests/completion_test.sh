#!/bin/bash
# Completes the same lines in bash, zsh and fish, by the scripts that are installed.
#   completion_test.sh PROGRAM FOLDER_OF_SCRIPTS
set -uo pipefail
program=$1 scripts=$2
export PATH=${program%/*}:$PATH LC_ALL=C.UTF-8
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
mkdir "$work/folder"
touch "$work/file"

# A line; what bash puts in place of its last piece; what a shell that doesn't cut words does.
cases=(
  'sett|settings|settings'
  'SETTINGS r|restore|restore'
  'settings set un|Units=+|Units='
  'settings set Units=k|K|Units=K'
  'settings set Units=K sampleaction=sam|Sample\ n|SampleAction=Sample n'
  'settings set "SampleAction=sam|SampleAction=Sample n|SampleAction=Sample n'
  'settings show --group SA|sampling|sampling'
  'probe 3 set conversion=t|T\(R\)|conversion=T(R)'
  'channel 3 |set|set'
  'channel 3 set pro|probe=+|probe='
  'scan set --mode input|Input\ 1 Input\ 2|Input 1 Input 2'
  '--baud 300 measure --st|--start --stop|--start --stop'
  'measure --start --st||'
  'measure --count=3 --cou||'
  'measure --count 3 --e|--every|--every'
  '--baud=115|115200|--baud=115200'
  'help settings sa|save|save'
  'config set b|baud=+|baud='
  "--trace=$work/fi|<default>|--trace=$work/file"
  "settings diff x $work/fi|<default>|$work/file"
  "download --folder $work/fo|<dirnames>|$work/folder/"
)

in_bash() {
  local line=$1 COMP_LINE COMP_CWORD word rest
  local -a COMP_WORDS=(thermoscribe) COMPREPLY=() words
  COMP_LINE="thermoscribe $line"
  read -ra words <<< "$line"
  for word in "${words[@]}"; do
    # As bash does, without quotes: "NAME" "=" "VALUE".
    if [[ $word == *=* && $word != \"* ]]; then
      COMP_WORDS+=("${word%%=*}" "=")
      rest=${word#*=}
      [[ -z $rest ]] || COMP_WORDS+=("$rest")
    else
      COMP_WORDS+=("$word")
    fi
  done
  [[ $line != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  options=
  _thermoscribe
  case $options in
    '-o nospace') echo "${COMPREPLY[*]}+" ;;
    '') echo "${COMPREPLY[*]}" ;;
    *) echo "<${options#-o }>" ;;
  esac
}
compopt() { options=$*; }
source "$scripts/bash-completion/completions/thermoscribe"

# shellcheck disable=SC2016
in_zsh='
  compdef() { [[ "$*" == "_thermoscribe thermoscribe" ]] }
  compset() { [[ $1 == -P && $PREFIX == --*=* ]] && before=${PREFIX%%=*}= && PREFIX=${PREFIX#*=} }
  compadd() { found+=("${(@P)@[-1]}") }
  _files() { local list=(${~:-"$PREFIX*"}); found=("$before"${^list}${1:+/}) }
  source "$1" || exit
  while IFS= read -r line; do
    found=() before=
    words=(thermoscribe ${(z)line})
    [[ $line != *" " ]] || words+=("")
    CURRENT=$#words PREFIX=${words[-1]#\"}
    _thermoscribe
    print -r -- "$found"
  done'
# shellcheck disable=SC2016
in_fish='
  source $argv[1]; or exit
  while read -l line
    set -l found (complete -C "thermoscribe $line" | string replace -r "\t.*" "")
    echo "$found"
  end'

lines=("${cases[@]%%|*}")
failures=0
mapfile -t zsh < <(printf '%s\n' "${lines[@]}" |
  IFS= zsh -f -c "$in_zsh" zsh "$scripts/zsh/site-functions/_thermoscribe")
mapfile -t fish < <(printf '%s\n' "${lines[@]}" |
  fish --no-config -c "$in_fish" "$scripts/fish/vendor_completions.d/thermoscribe.fish")
expect() {
  [ "$3" = "$4" ] && return
  printf '%s, "%s": "%s" in place of "%s"\n' "$1" "$2" "$4" "$3" >&2
  failures=$((failures + 1))
}
for i in "${!cases[@]}"; do
  IFS='|' read -r line piece whole <<< "${cases[i]}"
  expect bash "$line" "$piece" "$(in_bash "$line")"
  expect zsh "$line" "$whole" "${zsh[i]-}"
  expect fish "$line" "$whole" "${fish[i]-}"
done
exit $((failures > 0))
