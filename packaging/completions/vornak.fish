# Completion of vornak's command lines in fish: the tool itself knows what may stand there.
function __vornak_complete
    set -l words (commandline -opc) (commandline -ct)
    for line in ($words[1] --complete $words[2..] 2>/dev/null)
        if string match -q ':files*' -- $line
            __fish_complete_path (commandline -ct)
        else
            echo $line
        end
    end
end
complete -c vornak -f -a '(__vornak_complete)'
