# Completion of the wordlex command for bash.

_wordlex() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local verb=${COMP_WORDS[1]}
    local options="--encoding --help"
    COMPREPLY=()
    [ "$previous" = "=" ] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    [ "$current" = "=" ] && current=

    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "check compile dump compare lookup stats \
            --help --version" -- "$current")
        return
    fi
    case $previous in
        --fail-on) mapfile -t COMPREPLY < <(compgen -W "error warning" -- "$current"); return ;;
        --format) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$current"); return ;;
        --endian) mapfile -t COMPREPLY < <(compgen -W "little big host" -- "$current"); return ;;
        --disable)
            local rules
            rules=$(wordlex check --list-rules 2>/dev/null | cut -d ' ' -f 1)
            mapfile -t COMPREPLY < <(compgen -W "$rules" -- "$current")
            return
            ;;
        --encoding | --locale | --id-base | --id | --replace) return ;;
    esac
    case $verb in
        check) options+=" --reference --fail-on --disable --format --list-rules" ;;
        compile) options+=" --output --endian --locale --id-base --no-keys --disable --format" ;;
        dump) options+=" --output --format --header --sort" ;;
        compare) options+=" --format" ;;
        lookup) options+=" --id --main --replace --explain" ;;
        stats) options+=" --reference" ;;
    esac
    case $current in
        -*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
        *) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    esac
}
complete -F _wordlex wordlex
