# bash completion for kerfline. The words come from the program's own --help,
# so commands added later complete without a change here.
_kerfline() {
  local cur=${COMP_WORDS[COMP_CWORD]}
  local -a path=()
  local i word
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case $word in
      --home) ((i++)) ;;
      -*) ;;
      *) path+=("$word") ;;
    esac
  done
  if [[ ${COMP_WORDS[COMP_CWORD - 1]} == --home ]]; then
    mapfile -t COMPREPLY < <(compgen -d -- "$cur")
    return
  fi
  local help
  help=$("${COMP_WORDS[0]}" "${path[@]}" --help 2>/dev/null) || return
  local words
  if [[ $cur == -* ]]; then
    words=$(sed -n '/^Options:/,/^$/{s/^  *\(-[^ ]*\).*/\1/p}' <<<"$help" | tr ',' ' ')
  else
    words=$(sed -n '/^Subcommands:/,/^$/{s/^  \([a-z][a-z0-9-]*\) .*/\1/p}' <<<"$help")
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
  if [[ ${#COMPREPLY[@]} -eq 0 && $cur != -* ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  fi
}
complete -F _kerfline kerfline
