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
    mapfile -t COMPREPLY < <(compgen -W 'edit validate why how find eval lint test graph lsp doc migrate diff-rules schema show console serve study --version -h --help' -- "$current")
    return
  fi

  case $previous in
    --phase)
      mapfile -t COMPREPLY < <(compgen -W 'dependency global all' -- "$current")
      return
      ;;
    --format)
      local formats='text json'
      [[ ${COMP_WORDS[1]} != validate && ${COMP_WORDS[1]} != lint ]] || formats+=' sarif'
      [[ ${COMP_WORDS[1]} != test ]] || formats+=' junit'
      [[ ${COMP_WORDS[1]} != graph ]] || formats='mermaid dot json'
      [[ ${COMP_WORDS[1]} != study ]] || formats='csv parquet'
      [[ ${COMP_WORDS[1]} != doc ]] || formats='html markdown'
      mapfile -t COMPREPLY < <(compgen -W "$formats" -- "$current")
      return
      ;;
    --direction)
      mapfile -t COMPREPLY < <(compgen -W 'reads readers both' -- "$current")
      return
      ;;
    --coverage)
      mapfile -t COMPREPLY < <(compgen -W 'text json lcov' -- "$current")
      return
      ;;
    --fail-on)
      mapfile -t COMPREPLY < <(compgen -W 'error warning' -- "$current")
      return
      ;;
    --root | --based-on | --validation-root | --at) return ;;                     # objects, which are in a model
    --set | --on | --off | --add | --remove | --copy | --rename) return ;; # items, which are in a model
    -j | --jobs | --batch | --part | --scheduler | --limit | --depth | --filter | --fail-under | --title) return ;;                  # a number or a text
    --http | --host-name) return ;; # an address
  esac

  local options='-h --help'
  case ${COMP_WORDS[1]} in
    validate)
      options+=' --rules --root --phase --only-validator --format --places --no-places --fail-on -j --jobs'
      options+=' --coverage --coverage-out --fail-under'
      ;;
    lint) options+=' --rules --format --fail-on --severity --watch' ;;
    test) options+=' --rules --filter --format -j --jobs --coverage --coverage-out --fail-under' ;;
    edit)
      options+=' --rules --root --set --on --off --add --remove --copy --rename --out --in-place --overwrite --dry-run'
      options+=' --follow-references --format'
      ;;
    why) options+=' --rules --root --depth --format' ;;
    how) options+=' --rules --root --format' ;;
    find) options+=' --rules --root --limit --format' ;;
    eval) options+=' --rules --at --format' ;;
    graph) options+=' --rules --depth --direction --limit --format' ;;
    lsp) options+=' --stdio' ;;
    doc) options+=' --rules --format --out --title' ;;
    migrate) options+=' --rules --in-place --out --overwrite --dry-run --format' ;;
    diff-rules) options+=' --format' ;;
    schema) ;;
    show) options+=' --rules --model --root' ;;
    console) options+=' --rules --root --model --guide --based-on --log --validation-root --strict --quiet' ;;
    serve)
      options+=' --rules --root --stdio --http --folder --token-file --host-name --web --recovery --no-recovery'
      ;;
    study) options+=' --out --points --format --jobs --scheduler --part --batch --quiet' ;;
    *) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    return
  fi

  if [[ ${COMP_WORDS[1]} == schema ]]; then
    mapfile -t COMPREPLY < <(compgen -W 'rules tests protocol' -- "$current")
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
