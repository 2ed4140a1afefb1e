# Bash completion for fapictl. The tool knows its verbs, options, interfaces, methods and arguments; this only
# asks it.

_fapictl() {
    local current=${COMP_WORDS[COMP_CWORD]} candidate
    COMPREPLY=()
    while IFS= read -r candidate; do
        # Bash has split the line at = and : and replaces only what stands behind the last of them.
        if [[ $candidate == *=?* ]]; then
            candidate=${candidate#*=}
        elif [[ $candidate == *::* && ${COMP_LINE:0:COMP_POINT} == *::* ]]; then
            candidate=${candidate##*:}
        fi
        [[ $candidate == *= ]] && compopt -o nospace
        COMPREPLY+=("$candidate")
    done < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} -eq 0 && $current == @* ]]; then
        # A file's contents as an argument.
        compopt -o nospace
        mapfile -t COMPREPLY < <(compgen -P @ -f -- "${current#@}")
    fi
}

complete -o bashdefault -o default -F _fapictl fapictl
