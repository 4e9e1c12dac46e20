# What the scripts that work in the editor through real keys share; they set $work, $program and
# $name. With SHOT=FILE a picture is taken where one fails.

main="Tarvik language editor version 1.4"
box=" "
editor=

fail() {
    echo "$name: $* (line ${BASH_LINENO[*]})" >&2
    [ -z "${SHOT:-}" ] || import -window root "$SHOT"
    cat "$work/stderr" >&2
    exit 1
}
# A window of that title (a regular expression) is up and has the keyboard.
window() {
    for _ in $(seq 500); do
        if xdotool getactivewindow getwindowname 2>/dev/null | grep -qx -- "$1"; then
            sleep 0.03
            return
        fi
        sleep 0.02
    done
    fail "no window \"$1\"; there is: $(xdotool getactivewindow getwindowname 2>&1)"
}
keys() { xdotool key --delay 10 "$@"; sleep 0.02; }
text() { xdotool type --delay 5 -- "$1"; sleep 0.02; }
# A message box: it is closed and the main window is back.
ok() { window "$box"; keys Return; window "$main"; }
# A chooser of that title, of whatever kind: the path is typed.
choose() {
    window "$1"
    text "$2"
    sleep 0.3
    keys Return
}
# Starts the editor and waits for its window. A complaint of the toolkit ends it.
start() {
    G_DEBUG=fatal-criticals "$program" -zel >stdout 2>stderr &
    editor=$!
    window "$main"
}
# Leaves it; it ends with success, without a word, and without its lock.
leave() {
    keys alt+x
    for _ in $(seq 250); do
        kill -0 "$editor" 2>/dev/null || break
        sleep 0.02
    done
    if kill -0 "$editor" 2>/dev/null; then
        fail "the editor does not end"
    fi
    wait "$editor" || fail "the editor ended with status $?"
    editor=
    [ ! -s stderr ] || fail "something was printed on standard error"
    [ ! -e lang.lang-ini.lock ] || fail "the lock file is still there"
}
