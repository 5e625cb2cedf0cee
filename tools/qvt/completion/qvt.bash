# bash completion for qvt. The tool itself says what can stand there, so that both always agree.
_qvt() {
    local words=("${COMP_WORDS[@]:1:COMP_CWORD}") answer candidate
    words=("${words[@]/#\~\//$HOME/}")
    mapfile -t answer < <("${COMP_WORDS[0]}" __complete "${words[@]}" 2>/dev/null)
    COMPREPLY=()
    case ${answer[0]} in
        files) compopt -o default ;;
        paths) compopt -o nospace ;;&
        *)
            for candidate in "${answer[@]:1}"; do
                COMPREPLY+=("$(printf '%q' "$candidate")")
            done
            ;;
    esac
}
complete -F _qvt qvt
