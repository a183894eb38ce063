# Completion of virelune-widget for fish.
complete -c virelune-widget -f
complete -c virelune-widget -l player -x -d 'follow this player' -a "(virelune-widget --list-players 2>/dev/null | string match -r '^org\.mpris\.[^ ]*')"
complete -c virelune-widget -l list-players -d 'list the players on the session bus'
complete -c virelune-widget -l demo -d 'use the built-in demo player'
complete -c virelune-widget -l wait-for-player -d 'do not use the demo player when no player is installed'
complete -c virelune-widget -l snapshot -r -F -d 'write the present state as PNG, then exit'
complete -c virelune-widget -l tour -x -a '(__fish_complete_directories)' -d 'write one PNG for each state of the demo player'
complete -c virelune-widget -l export-ratings -r -F -d 'write all ratings and love marks as JSON Lines'
complete -c virelune-widget -l salvage -d 'export what can be read of a damaged store'
complete -c virelune-widget -l import-ratings -r -F -d 'take them over from such a file, or from a store\'s file'
complete -c virelune-widget -l list-backups -d 'list the days of which there are backups of them'
complete -c virelune-widget -l restore-ratings -x -d 'go back to the backup of that day' -a "(virelune-widget --list-backups 2>/dev/null | string match -r '^[0-9-]{10}')"
complete -c virelune-widget -l no-library -d 'do not write ratings into the player\'s own library'
complete -c virelune-widget -l stream-host -x -d 'ask this server for the live station\'s programme'
complete -c virelune-widget -l store-host -x -d 'search the store on this server'
complete -c virelune-widget -l on-top -d 'keep the card above other windows'
complete -c virelune-widget -l new -d 'start another card when one runs already'
complete -c virelune-widget -l scale -x -a '1 1.25 1.5 2 3 4' -d 'pixels per point, from 1 to 4'
complete -c virelune-widget -l help -d 'show the options'
complete -c virelune-widget -l version -d 'show the version'
