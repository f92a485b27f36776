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

# picture NAME: draws the blank with its names.
picture() {
  run vdm render blank.vdm -o "$1" --view 2,-3,3 --labels
}

story_make() {
  say "Model a blank plate, and import it as a part"
  run make_samples .
  run vdm import blank.step -o blank.vdm
  run vdm tree blank.vdm
  solid=$(handle_of blank.vdm 'solid')
}

story_name() {
  say "Name what matters: two faces and an edge of solid $solid"
  run vdm refs add blank.vdm "$solid" --at 10,10,16 --face --name seat
  run vdm refs add blank.vdm "$solid" --at 80,50,24 --face --name pad
  run vdm refs add blank.vdm "$solid" --at 80,0,16 --edge --name 'front edge'
  picture 1_named.png
}

story_drill() {
  say "A component: counterbored holes for M8 screws; four of them go in with one script"
  run vdm component add blank.vdm m8 counterbore --diameter 9 --bore 15 --bore-depth 8.5
  cat >holes.json <<'JSON'
[
  {"op": "insert", "component": "m8", "on": "seat", "at": [20, 20, 16], "name": "front left"},
  {"op": "insert", "component": "m8", "on": "seat", "at": [140, 20, 16], "name": "front right"},
  {"op": "insert", "component": "m8", "on": "seat", "at": [140, 80, 16], "name": "rear right"},
  {"op": "insert", "component": "m8", "on": "seat", "at": [20, 80, 16], "name": "rear left"}
]
JSON
  run cat holes.json
  run vdm edit blank.vdm --script holes.json
  picture 2_drilled.png
}

story_change() {
  say "Move one hole, erase another: what was cut is healed, every reference says how it fared"
  run vdm move blank.vdm 'front right' --by -20,10,0 --explain
  run vdm erase blank.vdm 'rear left'
  run vdm refs list blank.vdm
}

story_revise() {
  say "Revision B of the blank is thicker: the holes go into it, the names find their faces"
  run vdm replace blank.vdm "$solid" blank_b.step
  run vdm refs list blank.vdm
  picture 3_revision_b.png

  say "Drill through the named edge: it becomes two edges, and both keep the name"
  run vdm component add blank.vdm pin hole --diameter 12
  run vdm insert blank.vdm pin --on 'front edge' --direction 0,0,1 --name notch
  run vdm refs explain blank.vdm 'front edge'
  picture 4_notched.png

  say "A refused edit changes nothing: a script is all or nothing"
  printf '%s\n' '[{"op": "erase", "entity": "notch"}, {"op": "erase", "entity": "nobody"}]' >bad.json
  sha256sum blank.vdm >before.sha256
  expect_code 1 vdm edit blank.vdm --script bad.json
  run sha256sum --check before.sha256
}

story_check() {
  say "Everything is in the file: open it again and check"
  run vdm feature list blank.vdm
  run vdm refs audit blank.vdm
  run vdm audit blank.vdm
  run vdm export blank.vdm -o blank_drilled.step
}

story_remember() {
  local plate
  say "Typed properties on a part, and edits that can be undone"
  run vdm import plate.step -o plate.vdm
  plate=$(handle_of plate.vdm 'solid')
  run vdm props set plate.vdm "$plate" material S235JR
  run vdm props set plate.vdm "$plate" holes '[9.0, 9.0, 9.0, 9.0]' --type array:double
  run vdm props list plate.vdm "$plate"
  expect_code 1 vdm props set plate.vdm "$plate" material 7 --type long
  run undo_story plate.vdm "$plate"
}

story_keep() {
  local unit at
  say "An assembly: its structure, and a clone of a part of it in a library"
  run vdm import assembly.step -o unit.vdm
  run vdm tree unit.vdm
  unit=$(vdm tree unit.vdm | sed -n 's/.* insert of mounting unit (\([0-9A-F]*\)).*/\1/p')
  run vdm new library.vdm --units mm
  run vdm clone unit.vdm "$unit" --into library.vdm --name "unit left"

  say "Damage a copy: audit sees it, recovery saves the rest"
  cp unit.vdm damaged.vdm
  at=$(grep -abo 'bolt M8' unit.vdm | tail -n 1 | cut -d: -f1)
  dd if=/dev/zero of=damaged.vdm bs=1 seek="$at" count=4 conv=notrunc status=none
  expect_code 3 vdm audit damaged.vdm
  expect_code 3 vdm recover damaged.vdm -o rescued.vdm
}

demo_story() {
  story_make
  story_name
  story_drill
  story_change
  story_revise
  story_check
  story_remember
  story_keep
  say "What is left in $PWD"
  stat --format '%9s  %n' -- *
}
