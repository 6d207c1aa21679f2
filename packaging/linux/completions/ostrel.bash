# Completion of ostrel(1) for bash.
_ostrel() {
  local words=
  case $COMP_CWORD-${COMP_WORDS[1]} in
    1-*) words="settings accessibility displays buttons doctor --version --help" ;;
    2-settings) words="general displays exclude about" ;;
    2-buttons) words="forget" ;;
    2-accessibility) words="grant revoke status" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _ostrel ostrel
