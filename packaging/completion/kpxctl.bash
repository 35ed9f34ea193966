# shellcheck shell=bash
# Completion of kpxctl(8) for bash. "kpxctl complete" knows what may stand where.

# The words of the call up to the one that is typed, without quotes. "=" is a word of its own here.
_kpxctl_words() {
  local word behind_sign=
  words=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    local is_sign=
    [ "$word" != = ] || is_sign=yes
    if [ "${#words[@]}" -gt 0 ] && { [ "$is_sign" ] || [ "$behind_sign" ]; } &&
      ! { [ "$behind_sign" ] && [[ ${COMP_LINE-} == *"= $word"* ]]; }; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    behind_sign=$is_sign
  done
  words=("${words[@]//[\\\'\"]/}")
}

_kpxctl() {
  local -a words
  local word current typed=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  _kpxctl_words
  current=${words[-1]}
  while IFS=$'\t' read -r word _; do
    if [ "$word" = / ]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$typed")
    elif [[ $word == "$current"* ]]; then
      [[ $current != *=* ]] || word=${word#"${current%"${current##*=}"}"}
      [[ $typed == [\"\']* ]] || printf -v word %q "$word"
      COMPREPLY+=("$word")
    fi
  done < <(/usr/sbin/kpxctl complete "${words[@]}" 2>/dev/null)
  [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace 2>/dev/null
}

complete -F _kpxctl kpxctl
