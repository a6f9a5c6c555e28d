# Completion of quarry for bash: commands and options as quarry itself names them, and the titles of queries.

_quarry_titles() {
    local -a home=()
    local i
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == --home ]]; then home=(--home "${COMP_WORDS[i + 1]}"); fi
    done
    quarry list --json "${home[@]}" 2>/dev/null | sed -n 's/^ *"title": "\([^\\]*\)",\{0,1\}$/\1/p'
}

_quarry() {
    local groups="agent blacklist offline" # commands that hold commands
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local -a command=()
    COMPREPLY=()
    if [[ $previous == --home ]]; then
        compopt -o dirnames
        return
    fi
    if [[ $previous == -o || $previous == --output ]]; then
        compopt -o default
        return
    fi
    local i
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == --home ]]; then
            ((i++))
        elif [[ ${COMP_WORDS[i]} != -* ]]; then
            command+=("${COMP_WORDS[i]}")
            if [[ ${#command[@]} -gt 1 || " $groups " != *" ${command[*]} "* ]]; then break; fi
        fi
    done
    local words
    if [[ ${#command[@]} -eq 0 || " $groups " == *" ${command[*]} "* ]]; then
        words=$(quarry "${command[@]}" --help 2>/dev/null | sed -n '/^Examples/q; s/^  \(-*[a-z][a-z-]*\).*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    elif [[ $current == -* ]]; then
        words=$(quarry "${command[@]}" --help 2>/dev/null | sed -n '/^Examples/q; s/^  .*\(--[a-z-]*\).*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    elif [[ ${command[0]} == import && $previous != --into ]]; then
        compopt -o default
    elif [[ ${command[0]} == schedule ]]; then
        mapfile -t COMPREPLY < <(compgen -W "on off every" -- "$current")
    elif [[ ${command[0]} != blacklist && ${command[0]} != agent && ${command[0]} != update ]]; then
        if [[ ${command[0]} == offline ]]; then compopt -o dirnames; fi
        local title
        while IFS= read -r title; do
            if [[ ${title,,} == "${current,,}"* ]]; then COMPREPLY+=("$(printf '%q' "$title")"); fi
        done < <(_quarry_titles)
    fi
}

complete -F _quarry quarry
