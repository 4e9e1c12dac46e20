# Completion of lang for fish.

function __lang
    set -l before (commandline -opc)
    set -l current (commandline -ct)
    set -l command ''
    for word in $before[2..]
        if contains -- $word compile split check convert edit excel
            set command $word
            break
        end
    end
    set -l words
    switch "$command:$before[-1]"
        case ':-output-lang-?'
            return
        case :oformat
            set words gtk lang
        case ':*'
            set words compile check convert edit excel help -output-lang-1 -output-lang-2 \
                -zel -zel2 -log
        case compile:-dst-dir split:-dst-dir
            __fish_complete_directories $current ''
            return
        case 'compile:*' 'split:*'
            set words -dst-dir -help
        case check:check
            set words --help
        case 'check:*'
            __fish_complete_path $current
            return
        case 'convert:*'
            set words -only-used
        case excel:excel
            printf '%s\n' unicode
            return
    end
    if test -n "$command"; and not string match -q -- '-*' $current
        __fish_complete_suffix .lang-src
    else if set -q words[1]
        printf '%s\n' $words
    end
end

complete -c lang -f -a '(__lang)'
