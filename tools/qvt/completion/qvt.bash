# bash completion for qvt. The tool itself says what can stand there, so that both always agree.

# The words up to the cursor, in `words`. What bash has taken apart at "=" and ":" becomes one again; `kept` is the
# beginning of the last one that stays on the line.
_qvt_words() {
    local line=${COMP_LINE:0:COMP_POINT} word blanks i
    for ((i = 0; i <= COMP_CWORD; ++i)); do
        blanks=${line%%[![:space:]]*}
        line=${line#"$blanks"}
        word=${COMP_WORDS[i]}
        ((i < COMP_CWORD)) || word=$line
        line=${line#"$word"}
        if [[ $blanks || $i == 0 ]]; then words+=("$word"); else words[-1]+=$word; fi
    done
    [[ $word == *[!=:]* ]] || word=
    kept=${words[-1]:0:${#words[-1]} - ${#word}}
    words=("${words[@]//\\/}") kept=${kept//\\/}
}

_qvt() {
    local words=() kept answer candidate option=
    _qvt_words
    [[ ${words[-1]} != --*=* ]] || option=${words[-1]%%=*}=
    words=("${words[@]/#\~\//$HOME/}")
    words=("${words[@]/=\~\//=$HOME/}")
    mapfile -t answer < <("${words[0]}" __complete "${words[@]:1}" 2>/dev/null)
    COMPREPLY=()
    case ${answer[0]} in
        files)
            compopt -o default
            # The shell's own way needs a word that is the file and nothing else.
            [[ $kept == "$option"* ]] || mapfile -t answer < <(echo && compgen -f -- "${words[-1]#"$option"}")
            ;;
        paths) compopt -o nospace ;;
    esac
    for candidate in "${answer[@]:1}"; do
        candidate=$option$candidate
        COMPREPLY+=("$(printf '%q' "${candidate#"$kept"}")")
    done
}
complete -F _qvt qvt
