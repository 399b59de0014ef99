# bash completion for velmora-open

_velmora_open() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    case $prev in
    --seek | --volume) return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--enqueue --play --pause --play-pause --stop --next --previous --seek
            --volume --raise --quit --status --lyrics --help --version" -- "$cur")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    fi
}
complete -F _velmora_open velmora-open
