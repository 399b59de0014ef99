# bash completion for velmora-catalogue

_velmora_catalogue() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    case $prev in
    --port | --name) return ;;
    --bind)
        mapfile -t COMPREPLY < <(compgen -W "127.0.0.1 0.0.0.0 ::1 ::" -- "$cur")
        return
        ;;
    --at)
        mapfile -t COMPREPLY < <(compgen -W "http://" -- "$cur")
        return
        ;;
    --cert | --key | --cache | --introduce)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
        return
        ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--port --bind --name --offer-updates --cert --key --cache --introduce --at
            --help --version" -- "$cur")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
    fi
}
complete -F _velmora_catalogue velmora-catalogue
