# Completion of channellist in bash: the tool says what may stand there.

_channellist() {
    local words=("${COMP_WORDS[@]:1}") candidates candidate word
    words=("${words[@]//[\\\"\']/}")
    word=${words[COMP_CWORD - 1]}
    mapfile -t candidates < <("${BASH_ALIASES[channellist]:-channellist}" __complete "$COMP_CWORD" \
        "${words[@]}" 2>/dev/null)
    COMPREPLY=()
    if [ "${candidates[0]-}" = :files ]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    for candidate in "${candidates[@]}"; do
        [[ $candidate != "$word"* ]] || COMPREPLY+=("$candidate")
    done
}

complete -o filenames -F _channellist channellist
