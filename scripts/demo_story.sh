# The story that demo.sh plays: sourced by it, with `say`, `run`, $root and the command `vdm` at hand.
# shellcheck shell=bash

# handle_of FILE PATTERN: handle of the first line of the product tree that matches.
handle_of() {
  vdm tree "$1" | sed -n "s/^[^0-9A-F]*\([0-9A-F]\+\) $2.*/\1/p" | head -n 1
}

# expect_code CODE COMMAND...: runs a command that is to end with that exit code.
expect_code() {
  local wanted=$1 code=0
  shift
  run "$@" 2>&1 || code=$?
  printf '(exit code %d)\n' "$code"
  [ "$code" -eq "$wanted" ]
}

story_make() {
  say "Model a plate and a mounting unit, and write them as STEP files"
  run make_samples .

  say "Import both: a part and an assembly"
  run vdm import plate.step -o plate.vdm
  run vdm import assembly.step -o unit.vdm
  run vdm tree unit.vdm
  run vdm info plate.vdm
}

story_remember() {
  solid=$(handle_of plate.vdm 'solid')
  say "Give the plate ($solid) a memory: typed properties"
  run vdm props set plate.vdm "$solid" material S235JR
  run vdm props set plate.vdm "$solid" holes '[9.0, 9.0, 9.0, 9.0]' --type array:double
  run vdm props set plate.vdm "$solid" suppliers '{"Nord": 12.5, "West": 13.1}' --type map
  run vdm props list plate.vdm "$solid"

  say "A value of another type is refused, and nothing changes"
  expect_code 1 vdm props set plate.vdm "$solid" material 7 --type long
}

story_undo() {
  say "Change shape and data in steps, take them back, bring them again"
  run undo_story plate.vdm "$solid"
}

story_clone() {
  local unit
  unit=$(vdm tree unit.vdm | sed -n 's/.* insert of mounting unit (\([0-9A-F]*\)).*/\1/p')
  say "Clone the mounting unit ($unit) with everything in it into a library"
  run vdm new library.vdm --units mm
  run vdm clone unit.vdm "$unit" --into library.vdm --name "unit left"
  run vdm info library.vdm
}

story_check() {
  say "Open the drawings again and check them"
  run vdm props list plate.vdm "$solid"
  local drawing
  for drawing in plate.vdm unit.vdm library.vdm; do
    run vdm audit "$drawing"
  done

  say "Damage a copy: audit sees it, recovery saves the rest"
  cp unit.vdm damaged.vdm
  local at
  at=$(grep -abo 'bolt M8' unit.vdm | tail -n 1 | cut -d: -f1)
  dd if=/dev/zero of=damaged.vdm bs=1 seek="$at" count=4 conv=notrunc status=none
  expect_code 3 vdm audit damaged.vdm
  expect_code 3 vdm recover damaged.vdm -o rescued.vdm
  run vdm tree rescued.vdm

  say "And out again as STEP"
  run vdm export plate.vdm -o plate_drilled.step
}

demo_story() {
  story_make
  story_remember
  story_undo
  story_clone
  story_check
  say "What is left in $PWD"
  stat --format '%9s  %n' -- *
}
