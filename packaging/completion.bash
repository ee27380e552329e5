# Completes the commands and options of the Kelvara programs, from what their --help says. A program's file is one of these.
_kelvara()
{
    local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]} command=() words
    if [[ $current == -* ]]; then
        [[ $COMP_CWORD == 1 || ${COMP_WORDS[1]} == -* ]] || command=("${COMP_WORDS[1]}")
        words=$({ "$program" --help; [[ ${#command[@]} == 0 ]] || "$program" "${command[@]}" --help; } 2>/dev/null \
            | sed -n 's/^  \(--*[a-z][a-z-]*\).*/\1/p' | sort -u)
    elif ((COMP_CWORD == 1)); then
        words=$("$program" --help 2>/dev/null | sed -n "s/^  *${program##*/} \([a-z][a-z]*\).*/\1/p" | sort -u)
    fi
    COMPREPLY=()
    [[ -z ${words:-} ]] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o default -F _kelvara kelvara-client kelvara-server kelvara-demo
