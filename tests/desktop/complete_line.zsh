# SPDX-License-Identifier: MIT
# complete_line.zsh FOLDER LINE: prints what zsh completes at the end of LINE by the functions in FOLDER, one a line. Zsh
# completes on terminals only, so a second one has a terminal here and puts what it finds into a file.
zmodload zsh/zpty zsh/zselect
found=$(mktemp)
setup=$(mktemp)

cat >$setup <<'END'
functions_folder=$1 found_file=$2
PROMPT= RPROMPT=
fpath=($functions_folder $fpath)
autoload -Uz compinit && compinit -u -D
compadd() {
    local -a matches
    # With one of these options it does not add, but answers.
    if [[ ${@[1,(i)--]} != *' -'[OAD]' '* ]]; then
        builtin compadd -A matches "$@"
        print -rl -- $matches >>$found_file
    fi
    builtin compadd "$@"
}
complete-and-tell() { zle complete-word; print -r -- "END OF MATCHES" >>$found_file }
zle -N complete-and-tell
bindkey '^I' complete-and-tell
END
zpty terminal zsh -f -i
zpty -w terminal "source $setup ${(q)1} $found; cd ${(q)PWD}"
zpty -w -n terminal "$2"$'\t'
for ((i = 0; i < 5000; ++i)); do
    grep -qx "END OF MATCHES" $found && break
    zselect -t 1
done
zpty -d terminal
grep -vx -e "END OF MATCHES" -e "" $found
rm -f $found $setup
