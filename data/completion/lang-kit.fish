# Completion of lang-kit for fish. The program's own help says what there is: "  -o, --output FILE
# text" for an option, and "a, b or c" in its text for the values it takes.

function __lang_kit
    set -l before (commandline -opc)
    set -l current (commandline -ct)
    set -l program $before[1]
    if test (count $before) -eq 1
        $program --help 2>/dev/null | string replace -rf '^  ([a-z]+) +(.*)' '$1\t$2'
        printf '%s\n' --help --version
        return
    end
    # Line by line: short name, long name, value, text.
    set -l options ($program $before[2] --help 2>/dev/null |
        string replace -rf '^  (?:(-[a-z]), )?(--[a-z0-9-]+)(?: (\S+))?  +(.*)$' '$1|$2|$3|$4')
    for option in $options
        set -l part (string split -m 3 '|' -- $option)
        if test -z "$part[3]"; or not contains -- $before[-1] $part[1] $part[2]
            continue
        end
        # The option before takes a value.
        set -l values (string replace -r ' \([^)]*\)$' '' -- $part[4] | string replace -r '^.*: ' '')
        switch $part[3]
            case FILE PATH
                __fish_complete_path $current
            case DIR
                __fish_complete_directories $current ''
            case 'RULE,...'
                $program lint --rules 2>/dev/null | string replace -r ' .*' ''
            case '*'
                if string match -qr '^[a-z0-9]+(, [a-z0-9]+)*( or [a-z0-9]+)$' -- $values
                    string replace -a ' or ' ', ' -- $values | string split ', '
                end
        end
        return
    end
    if string match -q -- '-*' $current
        for option in $options
            set -l part (string split -m 3 '|' -- $option)
            printf '%s\t%s\n' $part[2] $part[4]
        end
        return
    end
    switch $before[2]
        case import check adopt
            __fish_complete_path $current
        case start
        case '*'
            __fish_complete_suffix .lang-src
    end
end

complete -c lang-kit -f -a '(__lang_kit)'
