# fish completion for qerefine
qerefine completion fish | source
