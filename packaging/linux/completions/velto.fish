# Completion of velto's options for fish.
complete -c velto -f
complete -c velto -l analyze -d 'Open the window and analyze the disk'
complete -c velto -l applications -d 'Open the window with the applications to uninstall'
complete -c velto -l trash -d 'Open the window with Velto Trash'
complete -c velto -l maintenance -d 'One maintenance pass without a window'
complete -c velto -l reset -d 'Take away the schedule and all that Velto keeps'
complete -c velto -l debug-log -d 'Tell whole messages in the log'
complete -c velto -l version -d 'Print the version and end'
complete -c velto -l help -d 'Print the options and end'
