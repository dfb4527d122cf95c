# Completes command lines of weaver in fish.

# Whether the words so far are those of a command, and of none of the commands below it.
function __weaver_at -a path inner
    set -l words (commandline -opc)
    set -e words[1]
    set -l expected (string split -n ' ' -- $path)
    for word in $words
        string match -q -- '-*' $word; and continue
        if test (count $expected) -gt 0
            test $word = $expected[1]; or return 1
            set -e expected[1]
        else if contains -- $word (string split -n ' ' -- $inner)
            return 1
        end
    end
    test (count $expected) -eq 0
end

complete -c weaver -f
complete -c weaver -n "__weaver_at '' 'weave yarn'" -a weave -d 'Weave files'
complete -c weaver -n "__weaver_at '' 'weave yarn'" -a yarn -d 'Look after yarn'
complete -c weaver -n "__weaver_at '' 'weave yarn'" -s h -l help -d 'Show this help'
complete -c weaver -n "__weaver_at '' 'weave yarn'" -l version -d 'Show the version'
complete -c weaver -n "__weaver_at 'weave' ''" -F
complete -c weaver -n "__weaver_at 'weave' ''" -x -a 'left right'
complete -c weaver -n "__weaver_at 'weave' ''" -s h -l help -d 'Show this help'
complete -c weaver -n "__weaver_at 'weave' ''" -s o -l out -r -F -d 'The cloth'
complete -c weaver -n "__weaver_at 'weave' ''" -l pattern -x -a 'plain twill satin' -d 'The pattern'
complete -c weaver -n "__weaver_at 'weave' ''" -l format -x -a 'svg png' -d 'The format'
complete -c weaver -n "__weaver_at 'weave' ''" -l loom -x -a '(__fish_complete_directories)' -d 'A folder with looms; `old\' ones, or "new", at C:\\loom or ~/loom'
complete -c weaver -n "__weaver_at 'weave' ''" -l a-rather-long-name-for-one -x -d 'How often'
complete -c weaver -n "__weaver_at 'weave' ''" -l json -d 'Print JSON'
complete -c weaver -n "__weaver_at 'yarn' 'spin burn'" -a spin -d 'Spin yarn'
complete -c weaver -n "__weaver_at 'yarn' 'spin burn'" -a burn -d 'Burn yarn'
complete -c weaver -n "__weaver_at 'yarn' 'spin burn'" -s h -l help -d 'Show this help'
complete -c weaver -n "__weaver_at 'yarn spin' ''" -x -a 'weave yarn'
complete -c weaver -n "__weaver_at 'yarn spin' ''" -s h -l help -d 'Show this help'
complete -c weaver -n "__weaver_at 'yarn spin' ''" -l wheel -r -F -d 'The wheel'
complete -c weaver -n "__weaver_at 'yarn burn' ''" -s h -l help -d 'Show this help'
