# Completion of kpxctl(8) for fish. "kpxctl complete" knows what may stand where.

function __kpxctl_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in (/usr/sbin/kpxctl complete $words[2..-1] "$current" 2>/dev/null)
        if test "$line" = /
            __fish_complete_path "$current"
        else
            echo $line
        end
    end
end

complete -c kpxctl -f -a '(__kpxctl_complete)'
