# Completion of virelune-widget for bash.

_virelune_widget() {
  local cur prev
  local options="--player --list-players --demo --wait-for-player --snapshot --tour
    --export-ratings --salvage --import-ratings --list-backups --restore-ratings --no-library
    --stream-host --store-host --on-top --new --scale --help --version"
  COMPREPLY=()
  cur=${COMP_WORDS[COMP_CWORD]}
  prev=${COMP_WORDS[COMP_CWORD - 1]}
  # "--option=value" arrives in three words.
  if [[ $cur == "=" ]]; then
    cur=
  elif [[ $prev == "=" ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  local IFS=$'\n'
  case $prev in
    --player)
      mapfile -t COMPREPLY < <(compgen -W "$(virelune-widget --list-players 2>/dev/null |
        sed -n 's/^\(org\.mpris\.[^ ]*\).*/\1/p')" -- "$cur")
      ;;
    --restore-ratings)
      mapfile -t COMPREPLY < <(compgen -W "$(virelune-widget --list-backups 2>/dev/null |
        sed -n 's/^\([0-9-]\{10\}\).*/\1/p')" -- "$cur")
      ;;
    --snapshot | --export-ratings | --import-ratings)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    --tour)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$cur")
      ;;
    --stream-host | --store-host | --scale) ;;
    *)
      IFS=$' \t\n'
      mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
      ;;
  esac
}

complete -F _virelune_widget virelune-widget
