# Completion of velto's options for bash.
_velto() {
    local word=${COMP_WORDS[COMP_CWORD]}
    mapfile -t COMPREPLY < <(compgen -W '--analyze --applications --trash --maintenance --reset
        --debug-log --version --help' -- "$word")
}
complete -F _velto velto
