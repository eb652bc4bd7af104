# Completion of corvane for bash.
_corvane() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local commands='eval functions about help db import show update export sheet worker'
    local options='--plugin --database --drive --hidden --interface-version --host-version --ui --answer --json --raw
        --save-streams --strict --progress --where --to --name --name-field --as --by-reference --replace --jobs
        --resume --help --version'
    COMPREPLY=()
    case $before in
    --ui) COMPREPLY=($(compgen -W 'auto none gtk' -- "$word")) && return ;;
    --hidden) COMPREPLY=($(compgen -W 'marked named' -- "$word")) && return ;;
    --progress) COMPREPLY=($(compgen -W 'auto always never' -- "$word")) && return ;;
    --answer) COMPREPLY=($(compgen -W 'ok cancel file: folder: set:' -- "$word")) && return ;;
    --as) COMPREPLY=($(compgen -W 'auto image file' -- "$word")) && return ;;
    db) COMPREPLY=($(compgen -W 'create table' -- "$word")) && return ;;
    --plugin | --database) compopt -o default && return ;;
    --save-streams | --to) compopt -o dirnames && return ;;
    help)
        COMPREPLY=($(compgen -W "$("${COMP_WORDS[0]}" functions 2>/dev/null | cut -f 2)" -- "$word"))
        return
        ;;
    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$word"))
    elif ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W "$commands" -- "$word"))
    else
        compopt -o default
    fi
}
complete -F _corvane corvane
