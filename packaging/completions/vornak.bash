# Completion of vornak's command lines in bash: the tool itself knows what may stand there.
_vornak() {
    local line ending word=${COMP_WORDS[COMP_CWORD]#=} program=${COMP_WORDS[0]/#\~/$HOME}
    COMPREPLY=()
    while IFS= read -r line; do
        if [[ $line == :files* ]]; then
            compopt -o filenames
            ending=${line#:files} ending=${ending# }
            mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(
                compgen -f -X "!*$ending" -- "$word"
                [[ -n $ending ]] && compgen -d -- "$word"
            )
        else
            COMPREPLY+=("${line%%$'\t'*}")
        fi
    done < <("$program" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _vornak vornak
