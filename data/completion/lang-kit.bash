# Completion of lang-kit for bash. The program's own help says what there is: "  -o, --output FILE
# text" for an option, and "a, b or c" in its text for the values it takes.

_lang_kit()
{
    local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
    local words='' files='' IFS=$'\n'
    COMPREPLY=()

    if ((COMP_CWORD == 1)); then
        words=$("$program" --help 2>/dev/null | sed -nE 's/^  ([a-z]+) .*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words"$'\n--help\n--version' -- "$word")
        return
    fi

    local name value text
    while IFS='|' read -r name value text; do
        words+=${name##*, }$'\n'
        [[ -n $value && " ${name//,/} " == *" $before "* ]] || continue
        # The option before takes a value.
        case $value in
        FILE | PATH) files=all ;;
        DIR) files=folders ;;
        esac
        text=${text% (*)}
        text=${text##*: }
        words=
        [[ $text =~ ^[a-z0-9]+(, [a-z0-9]+)*( or [a-z0-9]+)$ ]] &&
            words=$(sed -E 's/, | or /\n/g' <<<"$text")
        [[ $value == RULE,... ]] && words=$("$program" lint --rules 2>/dev/null | sed 's/ .*//')
        [[ -n $files ]] || files=none
        break
    done < <("$program" "${COMP_WORDS[1]}" --help 2>/dev/null |
             sed -nE 's/^  ((-[a-z], )?--[a-z0-9-]+)( ([^ ]+))?  +(.*)$/\1|\4|\5/p')

    if [[ -z $files ]]; then
        [[ $word == -* ]] || words=
        case ${COMP_WORDS[1]} in
        import | check | adopt) files=all ;;
        start) files=none ;;
        *) files=sources ;;
        esac
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        [[ -z $words ]] || compgen -W "$words" -- "$word"
        [[ $word != -* ]] || exit
        case $files in
        all) compgen -f -- "$word" ;;
        folders) compgen -d -- "$word" ;;
        sources) compgen -d -- "$word"; compgen -f -X '!*.lang-src' -- "$word" ;;
        esac)
}

complete -F _lang_kit lang-kit
