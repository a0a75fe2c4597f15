# bash completion for nvhost and nvcatalogue: the commands and options that their help tells, else files.
_nvsupport_complete() {
  local word command=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ $word != -* ]] && command=("$word") && break
  done
  local -r help=$("$1" "${command[@]}" --help 2>/dev/null)
  local -r words=$(sed -nE '/^Positionals:/,/^$/d; s/^  (-h,)?(--)?([a-z][a-z0-9-]*) .*/\2\3/p' <<<"$help")
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$2")
}
complete -o default -F _nvsupport_complete nvhost nvcatalogue
