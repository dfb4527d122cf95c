#compdef weaver
# Completes command lines of weaver in zsh.

_weaver() {
    local context state state_descr line
    typeset -A opt_args
    _arguments -s -S -C \
        '(-h --help)-h[Show this help]' \
        '(-h --help)--help[Show this help]' \
        '(--version)--version[Show the version]' \
        '1:command:->command' \
        '*::argument:->argument'
    case $state in
    command)
        local -a commands
        commands=(
            'weave:Weave files'
            'yarn:Look after yarn'
        )
        _describe -t commands command commands
        ;;
    argument)
        case $words[1] in
        weave) _weaver_weave ;;
        yarn) _weaver_yarn ;;
        esac
        ;;
    esac
}

_weaver_weave() {
    _arguments -s -S \
        '(-h --help)-h[Show this help]' \
        '(-h --help)--help[Show this help]' \
        '(-o --out)-o[The cloth]:OUT:_files' \
        '(-o --out)--out[The cloth]:OUT:_files' \
        '(--pattern)--pattern[The pattern]:plain|twill|satin:(plain twill satin)' \
        '(--format)--format[The format]:svg|png:(svg png)' \
        '*--loom[A folder with looms; `old'\'' ones, or "new", at C\:\\loom or ~/loom]:DIR:_files -/' \
        '(--a-rather-long-name-for-one)--a-rather-long-name-for-one[How often]:N:' \
        '(--json)--json[Print JSON]' \
        '*:FILE:_files' \
        '2:PLACE:(left right)'
}

_weaver_yarn() {
    local context state state_descr line
    typeset -A opt_args
    _arguments -s -S -C \
        '(-h --help)-h[Show this help]' \
        '(-h --help)--help[Show this help]' \
        '1:command:->command' \
        '*::argument:->argument'
    case $state in
    command)
        local -a commands
        commands=(
            'spin:Spin yarn'
            'burn:Burn yarn'
        )
        _describe -t commands command commands
        ;;
    argument)
        case $words[1] in
        spin) _weaver_yarn_spin ;;
        burn) _weaver_yarn_burn ;;
        esac
        ;;
    esac
}

_weaver_yarn_spin() {
    _arguments -s -S \
        '(-h --help)-h[Show this help]' \
        '(-h --help)--help[Show this help]' \
        '(--wheel)--wheel[The wheel]:FILE:_files' \
        '1:COMMAND:(weave yarn)'
}

_weaver_yarn_burn() {
    _arguments -s -S \
        '(-h --help)-h[Show this help]' \
        '(-h --help)--help[Show this help]'
}

if [ "$funcstack[1]" = _weaver ]; then
    _weaver "$@"
else
    compdef _weaver weaver
fi
