// thermoscribe completion: the scripts that let a shell complete the program's command lines.

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "apps/thermoscribe/completion.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kBash =
    R"(# bash completion for thermoscribe: the program itself tells what can stand at the cursor.

_thermoscribe() {
  local rest=$COMP_LINE program=${COMP_WORDS[0]/#\~/$HOME}
  local gap part='' piece word line quoted='' kept i
  local -a words=() lines=()
  COMPREPLY=()
  # bash also cuts words at "=" and ":", the program doesn't.
  for ((i = 0; i <= COMP_CWORD; i++)); do
    gap=${rest%%[![:blank:]]*}
    rest=${rest#"$gap"}
    part=${COMP_WORDS[i]}
    rest=${rest#"$part"}
    if [[ $i -eq 0 || -n $gap ]]; then words+=("$part"); else words[-1]+=$part; fi
  done
  words=("${words[@]//[\\\"\']/}")
  # What bash will put the candidate in place of; inside quotes it needs none of its own.
  piece=${part//[\\\"\']/}
  [[ $piece != [=:]* ]] || piece=
  [[ $part == [\"\']* ]] && quoted=1
  kept=$((${#words[-1]} - ${#piece}))

  mapfile -t lines < <("$program" __complete "${words[@]:1}" 2> /dev/null)
  case ${lines[0]} in
    files) compopt -o default ;;
    folders) compopt -o dirnames ;;
  esac
  for line in "${lines[@]:1}"; do
    word=${line%%$'\t'*}
    word=${word:kept}
    [[ -n $quoted ]] || printf -v word %q "$word"
    COMPREPLY+=("$word")
  done
  if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then compopt -o nospace; fi
}

complete -F _thermoscribe thermoscribe
)";

constexpr const char* kZsh = R"(#compdef thermoscribe
# zsh completion for thermoscribe: the program itself tells what can stand at the cursor.

_thermoscribe() {
  local program=${${(Q)words[1]}/#\~/$HOME} line word
  local -a typed lines whole wholeshown open openshown
  typed=("${(@Q)words[2,CURRENT-1]}")
  lines=("${(@f)$("$program" __complete $typed "${(Q)PREFIX}" 2> /dev/null)}")
  case $lines[1] in
    files)
      compset -P '--*='
      _files
      return
      ;;
    folders)
      compset -P '--*='
      _files -/
      return
      ;;
  esac
  for line in "${(@)lines[2,-1]}"; do
    word=${line%%$'\t'*}
    [[ $line != *$'\t'* ]] || line="$word  -- ${line#*$'\t'}"
    if [[ $word == *= ]]; then
      open+=("$word")
      openshown+=("$line")
    else
      whole+=("$word")
      wholeshown+=("$line")
    fi
  done
  local -a likeness=(-M 'm:{[:lower:][:upper:]}={[:upper:][:lower:]}')
  compadd $likeness -S '' -d openshown -a open
  compadd $likeness -d wholeshown -a whole
}

# Loaded by its name, or read into a shell that runs.
if [[ $funcstack[1] == _thermoscribe ]]; then
  _thermoscribe "$@"
else
  compdef _thermoscribe thermoscribe
fi
)";

constexpr const char* kFish =
    R"(# fish completion for thermoscribe: the program itself tells what can stand at the cursor.

function __thermoscribe_complete
    set -l typed (commandline -opc)
    set -l current (commandline -ct | string replace -ra '[\\\\"\']' '')
    set -l program (string replace -r '^~' $HOME -- $typed[1])
    type -q -- $program; or return
    set -l lines ($program __complete $typed[2..-1] "$current" 2> /dev/null)
    set -l option (string match -r '^--[^=]*=' -- "$current")
    set -l value (string replace -r '^--[^=]*=' '' -- "$current")
    switch "$lines[1]"
        case files
            __fish_complete_path "$value" | string replace -r -- '^' "$option"
        case folders
            __fish_complete_directories "$value" | string replace -r -- '^' "$option"
        case '*'
            string join \n -- $lines[2..-1]
    end
end

complete -c thermoscribe -f -a '(__thermoscribe_complete)'
)";

struct ShellRow {
  const char* word;
  const char* script;
};

constexpr std::array kShells = {ShellRow{"bash", kBash}, ShellRow{"zsh", kZsh},
                                ShellRow{"fish", kFish}};

}  // namespace

Command CompletionCommand() {
  const auto shell = std::make_shared<std::string>();
  std::vector<std::string> words;
  for (const ShellRow& row : kShells) words.emplace_back(row.word);
  Option argument = WordOption("shell", "SHELL", words, *shell, "one of " + Listed(words, "or"));
  argument.isrequired = true;
  return {
      .name = "completion",
      .brief = "Print a script that completes command lines in a shell",
      .footer =
          R"(An installed program has the scripts where the shells look for them. Without that, the shell
reads one when it starts:
  bash  source <(thermoscribe completion bash)    in ~/.bashrc
  zsh   source <(thermoscribe completion zsh)     in ~/.zshrc, behind compinit
  fish  thermoscribe completion fish | source     in ~/.config/fish/config.fish)",
      .options = {std::move(argument)},
      .body = [shell](CHost& host) {
        for (const ShellRow& row : kShells) {
          if (*shell != row.word) continue;
          std::string script = row.script;
          script.pop_back();
          host.Output().Record("completion", {{"shell", *shell}, {"script", row.script}}, script);
        }
        return EExitCode::DONE;
      }};
}

}  // namespace vane::thermoscribe
