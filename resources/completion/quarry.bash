# Completion of quarry for bash: commands and options as quarry itself names them, and the titles of queries.

_quarry_titles() {
    local -a home=()
    local i
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == --home ]]; then home=(--home "${COMP_WORDS[i + 1]}"); fi
    done
    quarry list --json "${home[@]}" 2>/dev/null | sed -n 's/^ *"title": "\([^\\]*\)",\{0,1\}$/\1/p'
}

_quarry_offer_titles() {
    local title
    while IFS= read -r title; do
        if [[ ${title,,} == "${1,,}"* ]]; then COMPREPLY+=("$(printf '%q' "$title")"); fi
    done < <(_quarry_titles)
}

_quarry() {
    local groups="agent blacklist offline" # commands that hold commands
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local -a command=()
    COMPREPLY=()
    local i
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == --home ]]; then
            ((i++))
        elif [[ ${COMP_WORDS[i]} != -* ]]; then
            command+=("${COMP_WORDS[i]}")
            if [[ ${#command[@]} -gt 1 || " $groups " != *" ${command[*]} "* ]]; then break; fi
        fi
    done
    local help words='' value=''
    help=$(quarry "${command[@]}" --help 2>/dev/null | sed '/^Examples/,$d')
    if [[ $previous == -* ]]; then # What the help says that this option takes.
        value=$(sed -n "s/^  \(-.,\)\{0,1\}$previous\(,--[a-z-]*\)\{0,1\} \([^ ][^ ]*\).*/\3/p" <<<"$help")
    fi
    if [[ -n $value ]]; then
        case $value in
        DIR) compopt -o dirnames ;;
        FILE) compopt -o default ;;
        FOLDER) _quarry_offer_titles "$current" ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$(tr -s '|A-Z' ' ' <<<"$value")" -- "$current") ;;
        esac
        return
    fi
    if [[ $current == -* ]]; then
        words=$(sed -n 's/^  \(-.,\)\{0,1\}\(--[a-z-]*\).*/\2/p' <<<"$help")
    elif [[ ${#command[@]} -eq 0 || " $groups " == *" ${command[*]} "* ]]; then
        words=$(sed -n 's/^  \([a-z][a-z-]*\) .*/\1/p' <<<"$help")
    else
        case ${command[0]} in
        import) compopt -o default ;;
        schedule) words="on off every" ;;
        services) words=$(sed -n 's/^  services \.\.\. *\(.*\);.*/\1/p' <<<"${help//,/}") ;;
        add | add-folder | agent | blacklist | log | prefs | update) ;;
        *)
            if [[ ${command[0]} == offline ]]; then compopt -o dirnames; fi
            _quarry_offer_titles "$current"
            ;;
        esac
        [[ -n $words ]] || return 0
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _quarry quarry
