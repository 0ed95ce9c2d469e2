# Bash completion for tsn.
#
# Everything that can be completed is read from the help of the tsn that stands on the line, so there is no list here to
# keep in step with it. In the help, commands stand below "Commands:"; an option is followed by a single blank and its
# value, if it takes one; a value that is one of several words is written as all of them with bars between, such as
# `text|json|sarif`; and the usage line names FILE where files are taken.

_tsn() {
  local program=${1/#\~/$HOME} current=$2 previous=$3 IFS=$' \t\n'
  COMPREPLY=()
  # In `--format=sarif` the equals sign is a word between the two.
  if [[ ${COMP_WORDS[COMP_CWORD]} == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  local command= word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ $word == -* ]] && continue
    command=$word
    break
  done

  local help
  help=$("$program" ${command:+"$command"} --help 2>/dev/null </dev/null) || return 0

  local line in_commands= takes_files= takes_value= commands= options= values=
  while read -r line; do
    line+=' '
    if [[ $line =~ ^(-[^ ]+)(\ ([^ :]+)\ )? ]]; then
      options+=" ${BASH_REMATCH[1]//,/ }"
      if [[ -n ${BASH_REMATCH[3]} && ,${BASH_REMATCH[1]}, == *,"$previous",* ]]; then
        takes_value=1
        [[ ${BASH_REMATCH[3]} == *'|'* ]] && values=${BASH_REMATCH[3]//|/ }
      fi
    elif [[ $line == 'Usage: '*FILE* ]]; then
      takes_files=1
    elif [[ $line == 'Commands: ' ]]; then
      in_commands=1
    elif [[ $line == ' ' ]]; then
      in_commands=
    elif [[ -n $in_commands ]]; then
      commands+=" ${line%% *}"
    fi
  done <<<"$help"

  if [[ -n $takes_value ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  elif [[ -z $command ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$current")
  elif [[ -n $takes_files ]]; then
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X '!*.tsn' -- "$current")
    compopt -o filenames 2>/dev/null # makes the shell quote blanks and mark directories
  fi
}

complete -F _tsn tsn
