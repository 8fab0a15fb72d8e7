# Completion for fish. The words come from the command itself, so that they are always its own.

function __lumenquest_complete
    set -l words (commandline -opc)
    set -l typed (commandline -ct)
    set typed (string unescape -- $typed; or string trim -lc \"\' -- $typed)
    for line in (lumenquest complete $words[2..-1] "$typed" 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path "$typed"
            case :folders
                __fish_complete_directories "$typed"
            case '*'
                echo $line
        end
    end
end

complete -c lumenquest -f -a '(__lumenquest_complete)'
