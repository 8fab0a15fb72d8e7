# Completion for bash. The words come from the command itself, so that they are always its own.

_lumenquest() {
  local words=() word quote='' before='' type='' line candidate i
  # Readline splits at "=" and ":", which the command reads as one word with what stands around
  # them, and puts what is chosen in the place of what follows the last one.
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    local count=${#words[@]}
    if ((count > 0)) && { [[ $word == = && ${words[count - 1]} == --* ]] ||
                          [[ ${words[count - 1]} == --*= ]]; }; then
      words[count - 1]+=$word
    elif ((count > 0)) && [[ $word == : || ${words[count - 1]} == *: && $word != -* ]]; then
      words[count - 1]+=$word
      ((i == COMP_CWORD)) && before=${words[count - 1]%:*}:
    else
      words+=("$word")
    fi
  done
  local last=$((${#words[@]} - 1))

  # What is typed, without quotes and backslashes.
  for i in "${!words[@]}"; do
    word=${words[i]}
    if [[ $word == [\"\']* ]]; then
      ((i == last)) && quote=${word:0:1}
      word=${word:1}
      word=${word%[\"\']}
    else
      word=${word//\\/}
    fi
    words[i]=$word
  done
  [[ ! $before && ${words[last]} == --*=* ]] && before=${words[last]%%=*}=

  COMPREPLY=()
  while IFS= read -r line; do
    case $line in
      :files) type=-f ;;
      :folders) type=-d ;;
      *)
        candidate=${line%%$'\t'*}
        candidate=${candidate#"$before"}
        [[ $quote ]] || printf -v candidate %q "$candidate"
        COMPREPLY+=("$candidate")
        ;;
    esac
  done < <("$1" complete "${words[@]}" 2>/dev/null)
  # Readline would put what the candidates have in common in the place of what is typed: of "malag",
  # for Málaga and Malagón, an "M". A blank among them has nothing in common with any.
  local typed=${words[last]#"$before"} differs=
  [[ $quote ]] || printf -v typed %q "$typed"
  for candidate in "${COMPREPLY[@]}"; do
    [[ $typed == "''" || $candidate == "$typed"* ]] || differs=1
  done
  [[ $differs ]] && ((${#COMPREPLY[@]} > 1)) && COMPREPLY+=(' ')
  if [[ $type ]]; then
    compopt -o filenames 2>/dev/null
    while IFS= read -r line; do
      COMPREPLY+=("$line")
    done < <(compgen "$type" -- "${words[last]#"$before"}")
  fi
}

complete -F _lumenquest lumenquest
