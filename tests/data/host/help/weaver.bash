# Completes command lines of weaver in bash.

# The commands below a command, and its options.
_weaver_words() {
    case "$1" in
    '') commands='weave yarn' options='-h --help --version' ;;
    'weave') commands='' options='-h --help -o --out --pattern --format --loom --a-rather-long-name-for-one --json' ;;
    'yarn') commands='spin burn' options='-h --help' ;;
    'yarn spin') commands='' options='-h --help --wheel' ;;
    'yarn burn') commands='' options='-h --help' ;;
    esac
}

# What stands behind an option of a command; nothing for a flag.
_weaver_value() {
    case "$1:$2" in
    'weave:-o' | 'weave:--out') value='files' ;;
    'weave:--pattern') value='words plain twill satin' ;;
    'weave:--format') value='words svg png' ;;
    'weave:--loom') value='folders' ;;
    'weave:--a-rather-long-name-for-one') value='nothing' ;;
    'yarn spin:--wheel') value='files' ;;
    *) value= ;;
    esac
}

# What stands in each place of a command's arguments.
_weaver_argument() {
    case "$1:$2" in
    'weave:'*) value='files' ;;
    'weave:'1) value='words left right' ;;
    'yarn spin:'0) value='words weave yarn' ;;
    *) value=nothing ;;
    esac
}

_weaver() {
    local current=${COMP_WORDS[COMP_CWORD]} command= place=0 commands= options= value= word= awaited= at
    COMPREPLY=()
    # bash takes "=" for a word of its own.
    [ "$current" != = ] || current=
    _weaver_words ''
    for ((at = 1; at < COMP_CWORD; ++at)); do
        word=${COMP_WORDS[at]}
        if [ "$word" = = ]; then
            continue
        elif [ -n "$awaited" ]; then
            awaited=
        elif [[ $word == -* ]]; then
            _weaver_value "$command" "$word"
            awaited=$value
        elif [[ " $commands " == *" $word "* ]]; then
            command=${command:+$command }$word
            _weaver_words "$command"
        else
            place=$((place + 1))
        fi
    done
    if [ -n "$awaited" ]; then
        value=$awaited
    elif [[ $current == -* ]]; then
        value="words $options"
    elif [ -n "$commands" ]; then
        value="words $commands"
    else
        _weaver_argument "$command" "$place"
    fi
    case $value in
    files | folders)
        [ "$value" = files ] && at=-f || at=-d
        mapfile -t COMPREPLY < <(compgen "$at" -- "$current")
        compopt -o filenames 2>/dev/null
        ;;
    words*)
        mapfile -t COMPREPLY < <(compgen -W "${value#words}" -- "$current")
        ;;
    esac
}

complete -F _weaver weaver
