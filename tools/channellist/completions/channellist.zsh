#compdef channellist
# Completion of channellist in zsh: the tool says what may stand there.

local -a candidates
candidates=("${(@f)$(channellist __complete $((CURRENT - 1)) "${(@Q)words[2,-1]}" 2>/dev/null)}")
compset -P '--*=' # the candidates behind it are those of the value
if [[ $candidates[1] == :files ]]; then
    _files
else
    compadd -a candidates
fi
