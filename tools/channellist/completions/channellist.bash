# Completion of channellist in bash: the tool says what may stand there.

_channellist() {
    local words=() candidates candidate word prefix rest=$COMP_LINE piece before i index
    COMPREPLY=()
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} == [\<\>]* ]]; then # behind a redirection
        mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]//[\\\"\']/}")
        return
    fi
    # Bash ends a word at "=" and ":", too: what no blank separates belongs together.
    for i in "${!COMP_WORDS[@]}"; do
        piece=${COMP_WORDS[i]}
        before=${rest%%"$piece"*}
        rest=${rest#*"$piece"}
        if [ "$i" -gt 0 ] && [ -n "$piece" ] && [ -z "$before" ]; then
            words[-1]+=$piece
        else
            words+=("$piece")
        fi
        [ "$i" -ne "$COMP_CWORD" ] || index=$((${#words[@]} - 1))
    done
    words=("${words[@]//[\\\"\']/}")
    mapfile -t candidates < <("${BASH_ALIASES[channellist]:-channellist}" __complete "$index" \
        "${words[@]:1}" 2>/dev/null)

    # Replies replace the piece alone, not what stands before it in the word.
    word=${words[index]}
    piece=${COMP_WORDS[COMP_CWORD]//[\\\"\']/}
    [[ $piece != [=:]* ]] || piece=
    prefix=${word%"$piece"}
    if [[ $word == --*=* ]]; then # the candidates are those of the value
        prefix=${prefix#--*=}
        word=${word#--*=}
    fi
    if [ "${candidates[0]-}" = :files ]; then
        mapfile -t candidates < <(compgen -f -- "$word")
    fi
    for candidate in "${candidates[@]}"; do
        [[ $candidate != "$word"* ]] || COMPREPLY+=("${candidate#"$prefix"}")
    done
}

complete -o filenames -F _channellist channellist
