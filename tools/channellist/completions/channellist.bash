# Completion of channellist in bash: the tool says what may stand there.

_channellist() {
    local words=() rest=$COMP_LINE piece gap candidates candidate word index prefix='' i
    # bash breaks words at ":" and "=", and wants back what stands behind the last of them.
    for ((i = 0; i < ${#COMP_WORDS[@]}; ++i)); do
        piece=${COMP_WORDS[i]}
        gap=${rest%%"$piece"*}
        [ -n "$piece" ] || gap=$rest
        rest=${rest#"$gap$piece"}
        word=
        if [ "$i" -gt 0 ] && [ -z "$gap" ]; then
            word=${words[-1]}
            unset 'words[-1]'
        fi
        if [ "$i" -eq "$COMP_CWORD" ]; then
            index=${#words[@]}
            prefix=$word
            [[ $piece != [:=]* ]] || prefix+=$piece
        fi
        words+=("$word$piece")
    done
    words=("${words[@]:1}")
    words=("${words[@]//[\\\"\']/}")
    prefix=${prefix//[\\\"\']/}
    word=${words[index - 1]}
    mapfile -t candidates < <("${BASH_ALIASES[channellist]:-channellist}" __complete "$index" \
        "${words[@]}" 2>/dev/null)
    COMPREPLY=()
    if [ "${candidates[0]-}" = :files ]; then
        mapfile -t COMPREPLY < <(compgen -f -- "${word#"$prefix"}")
        return
    fi
    for candidate in "${candidates[@]}"; do
        [[ $candidate != "$word"* ]] || COMPREPLY+=("${candidate#"$prefix"}")
    done
}

complete -o filenames -F _channellist channellist
