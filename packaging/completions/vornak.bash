# Completion of vornak's command lines in bash: the tool itself knows what may stand there.
_vornak() {
    local line program=${COMP_WORDS[0]/#\~/$HOME}
    COMPREPLY=()
    while IFS= read -r line; do
        if [[ $line == :files ]]; then
            compopt -o filenames
            mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]#=}")
        else
            COMPREPLY+=("${line%%$'\t'*}")
        fi
    done < <("$program" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _vornak vornak
