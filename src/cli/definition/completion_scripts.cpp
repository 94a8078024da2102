#include "cli/definition/completion.h"

namespace quorlo {

std::string_view completionScript(Shell shell) {
  switch (shell) {
    case Shell::bash:
      return R"sh(# bash completion of quorlo. Put it where bash-completion looks, or: source <(quorlo completion bash)
_quorlo() {
  local cur words cword text description kind=
  if declare -F _get_comp_words_by_ref >/dev/null; then
    _get_comp_words_by_ref -n =: cur words cword
  else
    cur=${COMP_WORDS[COMP_CWORD]} words=("${COMP_WORDS[@]}") cword=$COMP_CWORD
  fi
  COMPREPLY=()
  while IFS=$'\t' read -r text description; do
    if [[ -z $kind ]]; then kind=$text; else COMPREPLY+=("$(printf %q "$text")"); fi
  done < <("${words[0]}" complete -- "${words[@]:1:cword-1}" "${cur//\\/}" 2>/dev/null)
  if [[ $kind == files ]]; then
    compopt -o filenames
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$cur")
  fi
  if declare -F __ltrim_colon_completions >/dev/null; then __ltrim_colon_completions "$cur"; fi
}
complete -F _quorlo quorlo
)sh";
    case Shell::zsh:
      return R"sh(#compdef quorlo
# zsh completion of quorlo. Put it into a folder of $fpath as _quorlo.
_quorlo() {
  local line kind=
  local -a values
  for line in "${(@f)$("${words[1]}" complete -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)}"; do
    if [[ -z $kind ]]; then
      kind=$line
    else
      values+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}")
    fi
  done
  (( $#values )) && _describe -t values quorlo values
  [[ $kind == files ]] && _files
}
if [[ $funcstack[1] == _quorlo ]]; then _quorlo "$@"; else compdef _quorlo quorlo; fi
)sh";
    case Shell::fish:
      return R"sh(# fish completion of quorlo. Put it into ~/.config/fish/completions as quorlo.fish.
function __quorlo_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l lines ($words[1] complete -- $words[2..-1] 2>/dev/null)
    test (count $lines) -gt 1; and printf '%s\n' $lines[2..-1]
    test "$lines[1]" = files; and __fish_complete_path (commandline -ct)
end
complete -c quorlo -f -a '(__quorlo_complete)'
)sh";
  }
  return {};
}

}  // namespace quorlo
