#compdef kpxctl
# Completion of kpxctl(8) for zsh. "kpxctl complete" knows what may stand where.

local -a plain open
local word text status_=1
while IFS=$'\t' read -r word text; do
  if [[ $word == / ]]; then
    _files && status_=0
    continue
  fi
  text=${word//:/\\:}${text:+:$text}
  if [[ $word == *= ]]; then open+=("$text"); else plain+=("$text"); fi
done < <(/usr/sbin/kpxctl complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)
(( ! $#plain )) || { _describe -t words word plain && status_=0 }
(( ! $#open )) || { _describe -t settings setting open -S '' && status_=0 }
return status_
