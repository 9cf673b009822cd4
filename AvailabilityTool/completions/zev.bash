# Completion of the program zev in bash: commands, options, and the values and files that they take.
# shellcheck shell=bash

_zev() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  # "--phase=all" comes as three words.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  COMPREPLY=()

  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'validate lint show console --version -h --help' -- "$current")
    return
  fi

  case $previous in
    --phase)
      mapfile -t COMPREPLY < <(compgen -W 'dependency global all' -- "$current")
      return
      ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W 'text json sarif' -- "$current")
      return
      ;;
    --fail-on)
      mapfile -t COMPREPLY < <(compgen -W 'error warning' -- "$current")
      return
      ;;
    --root | --based-on | --validation-root) return ;; # objects, which stand in a model
    -j | --jobs) return ;;                             # a number
  esac

  local options='-h --help'
  case ${COMP_WORDS[1]} in
    validate) options+=' --rules --root --phase --only-validator --format --places --no-places --fail-on -j --jobs' ;;
    lint) options+=' --rules --format --fail-on --severity' ;;
    show) options+=' --rules --model --root' ;;
    console) options+=' --rules --root --model --guide --based-on --log --validation-root --strict --quiet' ;;
    *) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    return
  fi

  # So that names with blanks get their quotes and folders their slash.
  compopt -o filenames 2>/dev/null
  if [[ $previous == --rules ]]; then
    mapfile -t COMPREPLY < <(
      compgen -d -- "$current"
      compgen -f -X '!*.yaml' -- "$current"
    )
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
    [[ $previous != --log ]] || mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W 'stdout stderr' -- "$current")
  fi
} && complete -F _zev zev
