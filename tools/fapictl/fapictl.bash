# Bash completion for fapictl. The tool knows its verbs, options, interfaces, methods and arguments; this only
# asks it. For an alias, tell bash as well: alias f=build/release/bin/fapictl; complete -F _fapictl f

_fapictl() {
    local current=${COMP_WORDS[COMP_CWORD]} candidate home
    local -a program=("${COMP_WORDS[0]}")
    # The program that would be run: what an alias stands for, with the words that it brings.
    [[ -n ${BASH_ALIASES[${program[0]}]-} ]] && read -ra program <<<"${BASH_ALIASES[${program[0]}]}"
    if [[ ${program[0]} =~ ^~[A-Za-z0-9_.-]*(/|$) ]]; then
        home=${program[0]%%/*}
        program[0]=${program[0]#"$home"}
        eval "home=$home"  # a tilde, and letters of a user's name at most
        program[0]=$home${program[0]}
    fi
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
    done < <("${program[0]}" --complete "${program[@]:1}" "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} -eq 0 && $current == @* ]]; then
        # A file's contents as an argument.
        compopt -o nospace
        mapfile -t COMPREPLY < <(compgen -P @ -f -- "${current#@}")
    fi
}

complete -o bashdefault -o default -F _fapictl fapictl
