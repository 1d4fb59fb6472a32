# bash completion for qerefine
source <(qerefine completion bash)
