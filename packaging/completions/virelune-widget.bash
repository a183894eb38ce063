# Completion of virelune-widget for bash.

_virelune_widget() {
  local cur prev
  local options="--player --list-players --demo --wait-for-player --snapshot --tour
    --export-ratings --salvage --import-ratings --list-backups --restore-ratings --no-library
    --stream-host --store-host --on-top --new --scale --service --help --version"
  COMPREPLY=()
  local verbs="status rate love play-pause play pause stop next previous seek volume mute raise
    players follow export import backups restore list"
  local verb_options="--player --album --format --follow --position --loved --min"
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
    --player | follow)
      mapfile -t COMPREPLY < <(compgen -W "$(virelune-widget players 2>/dev/null |
        sed -n 's/^\([^ ]*\)  .*/\1/p')" -- "$cur")
      ;;
    --restore-ratings | restore)
      mapfile -t COMPREPLY < <(compgen -W "$(virelune-widget backups 2>/dev/null |
        sed -n 's/^\([0-9-]\{10\}\).*/\1/p')" -- "$cur")
      ;;
    --snapshot | --export-ratings | --import-ratings | export | import)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    --tour)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$cur")
      ;;
    love | mute)
      mapfile -t COMPREPLY < <(compgen -W $'on\noff\ntoggle' -- "$cur")
      ;;
    "--format")
      mapfile -t COMPREPLY < <(compgen -W $'json\nwaybar\nm3u' -- "$cur")
      ;;
    --stream-host | --store-host | --scale | "--min") ;;
    *)
      IFS=$' \t\n'
      if [[ " ${COMP_WORDS[*]:1:COMP_CWORD-1} " =~ \ (${verbs//[[:space:]]/|})\  ]]; then
        options=$verb_options
      elif [[ $cur != -* ]]; then
        options=$verbs
      fi
      mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
      ;;
  esac
}

complete -F _virelune_widget virelune-widget
