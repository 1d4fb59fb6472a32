#compdef qerefine
source <(qerefine completion zsh)
_qerefine "$@"
