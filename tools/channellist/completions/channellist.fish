# Completion of channellist in fish: the tool says what may stand there.

function __channellist_complete
    set -l before (commandline -opc)
    set -l word (commandline -ct)
    set -l typed (commandline -op)
    set -l next (math (count $before) + 1)
    test -n "$word"; and set next (math $next + 1)
    set -l behind $typed[$next..-1]
    set -l candidates (channellist __complete (count $before) $before[2..-1] "$word" $behind 2>/dev/null)
    # Behind "--option=" the candidates are those of the value.
    set -l option (string match -r -- '^--[^=]*=' "$word")
    if test "$candidates[1]" = :files
        set candidates (__fish_complete_path (string replace -- "$option" '' "$word"))
    end
    string join \n -- "$option"$candidates
end

complete -c channellist -f -a '(__channellist_complete)'
