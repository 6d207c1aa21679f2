# Completion of ostrel(1) for fish.
complete -c ostrel -f
complete -c ostrel -n __fish_use_subcommand -a settings -d 'Open the settings'
complete -c ostrel -n __fish_use_subcommand -a accessibility -d 'Allow Ostrel to handle clicks, or not'
complete -c ostrel -n __fish_use_subcommand -a displays -d 'The displays and their margins, as JSON'
complete -c ostrel -n __fish_use_subcommand -a buttons -d 'What is known of each window\'s buttons'
complete -c ostrel -n __fish_use_subcommand -a doctor -d 'What Ostrel sees of this desktop'
complete -c ostrel -n __fish_use_subcommand -l version -d 'The version'
complete -c ostrel -n __fish_use_subcommand -l help -d 'The commands'
complete -c ostrel -n '__fish_seen_subcommand_from settings' -a 'general displays exclude about'
complete -c ostrel -n '__fish_seen_subcommand_from buttons' -a forget
complete -c ostrel -n '__fish_seen_subcommand_from accessibility' -a 'grant revoke status'
