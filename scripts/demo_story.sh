# The story that demo.sh plays: sourced by it, with `say`, `run`, $root and the command `vdm` at hand.

demo_story() {
  say "What the command knows"
  run vdm --help
}
