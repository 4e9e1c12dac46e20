# Completion of lang for bash.

_lang()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command='' index
    for ((index = 1; index < COMP_CWORD; index++)); do
        case ${COMP_WORDS[index]} in
        compile | split | check | convert | edit | excel) command=${COMP_WORDS[index]}; break ;;
        esac
    done

    local words='' files=''
    case $command:$before in
    :-output-lang-[12]) ;;
    :oformat) words='gtk lang' ;;
    :*) words='compile check convert edit excel help -output-lang-1 -output-lang-2 -zel -zel2 -log' ;;
    compile:-dst-dir | split:-dst-dir) files=folders ;;
    compile:* | split:*) words='-dst-dir -help' files=sources ;;
    check:check) words='--help' files=sources ;;
    check:*) files=all ;;
    convert:*) words='-only-used' files=sources ;;
    edit:*) files=sources ;;
    excel:excel) words='unicode' ;;
    excel:*) files=sources ;;
    esac

    [[ $word == -* || $files == '' ]] && COMPREPLY=($(compgen -W "$words" -- "$word")) && return
    compopt -o filenames 2>/dev/null
    case $files in
    all) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
    folders) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    sources) mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X '!*.lang-src' -- "$word") ;;
    esac
}

complete -F _lang lang
