#!/usr/bin/env bash
# Installs the command into scratch folders and tries what stands there: the command itself in a tree
# that was moved, manual, completion, service and desktop entry.
#   installed.sh BUILD_DIR SCRATCH
set -euo pipefail
build=$1
scratch=$2
failures=0
fail() { echo "FAILED: $*" >&2; failures=$((failures + 1)); }

rm -rf "$scratch"
mkdir -p "$scratch/home" "$scratch/run"
export HOME=$scratch/home XDG_RUNTIME_DIR=$scratch/run LC_ALL=C.UTF-8 TZ=Europe/Ljubljana
unset XDG_DATA_HOME XDG_CONFIG_HOME
chmod 700 "$XDG_RUNTIME_DIR"

install_app() { cmake --install "$build" --component app "$@" >/dev/null; }

# In a prefix of one's own, then as a package does.
install_app --prefix "$scratch/first"
DESTDIR=$scratch/root install_app --prefix /usr
for file in bin/lumenquest share/lumenquest/gazetteer.sqlite share/man/man1/lumenquest.1 \
            share/bash-completion/completions/lumenquest \
            share/fish/vendor_completions.d/lumenquest.fish share/applications/lumenquest.desktop \
            share/icons/hicolor/scalable/apps/lumenquest.svg; do
  for tree in "$scratch/first" "$scratch/root/usr"; do
    [ -f "$tree/$file" ] || fail "$tree/$file is not there"
  done
done
[ -f "$scratch/first/share/zsh/site-functions/_lumenquest" ] || fail "zsh in a prefix"
[ -f "$scratch/root/usr/share/zsh/vendor-completions/_lumenquest" ] || fail "zsh in the system"

# The service, where a user's manager looks, with the program of its tree.
unit=$scratch/first/share/systemd/user/lumenquest-home.service
systemd-analyze --user --man=no verify "$unit" || fail "the service is refused"
grep -qx 'ExecStart=/usr/bin/lumenquest home serve' \
  "$scratch/root/usr/lib/systemd/user/lumenquest-home.service" || fail "the service's program"
refused=$(desktop-file-validate "$scratch/first/share/applications/lumenquest.desktop" || true)
[ -z "$refused" ] || fail "the desktop entry: $refused"

# Moved, the command finds what it needs beside itself.
mv "$scratch/first" "$scratch/moved"
export PATH=$scratch/moved/bin:$PATH
lumenquest today --place Bled --at 2027-05-08T20:00:00Z | grep -q Sunset || fail "today"
lumenquest places search moab | grep -q Utah || fail "places search"
lumenquest render sun --place Bled --at 2027-05-08T20:00:00Z -o "$scratch/sun.png" >/dev/null
head -c 8 "$scratch/sun.png" | grep -q PNG || fail "render"

# Every command and option that the help names stands in the manual, which formats cleanly.
warnings=$(MANWIDTH=120 man --warnings -l "$scratch/moved/share/man/man1/lumenquest.1" \
  2>&1 >"$scratch/manual.raw")
[ -z "$warnings" ] || fail "the manual: $warnings"
col -b <"$scratch/manual.raw" | expand >"$scratch/manual"
grep -Eo '^   [a-z].*' "$scratch/manual" | sed 's/^ *//' >"$scratch/sections"
leaves=0
walk() {
  local help commands command option section
  help=$(lumenquest "$@" --help)
  commands=$(awk '/^Commands:/ {on = 1; next} /^[^ ]/ {on = 0} on && /^  [a-z]/ {print $1}' <<<"$help")
  if [ -n "$commands" ]; then
    for command in $commands; do walk "$@" "$command"; done
    return
  fi
  leaves=$((leaves + 1))
  grep -qx "$*" "$scratch/sections" || fail "the manual has no command \"$*\""
  section=$(awk -v name="   $*" '$0 == name {on = 1; next} /^   ?[^ ]/ || /^[^ ]/ {on = 0} on' \
    "$scratch/manual")
  for option in $(awk '/^Options:/ {on = 1; next} /^[^ ]/ {on = 0} on' <<<"$help" |
                  grep -Eo '^  -[^ ]+' | grep -Eo -e '--[a-z-]+' | grep -vx -e --help); do
    grep -qE -e "$option([^a-z-]|\$)" <<<"$section" || fail "the manual's \"$*\" has no $option"
    grep -qE -e "^       .*$option( |\$)" "$scratch/manual" || fail "the manual does not explain $option"
  done
}
walk
[ "$leaves" -ge 15 ] || fail "the help shows $leaves commands"

# Completion, in the shells that can be asked without a terminal.
bash_offers() {
  local COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
  _lumenquest lumenquest
  printf '%s\n' "${COMPREPLY[@]}"
}
# shellcheck disable=SC1091
. "$scratch/moved/share/bash-completion/completions/lumenquest"
expect() {
  local name=$1 expected=$2 got=$3
  [ "$got" = "$expected" ] || fail "$name: \"$got\" instead of \"$expected\""
}
expect "bash, a command" render "$(bash_offers lumenquest ren)"
expect "bash, a value" dark "$(bash_offers lumenquest render --scheme = d)"
expect "bash, a link" //sun "$(bash_offers lumenquest home open lumenquest : //s)"
expect "bash, an option behind a time" --scheme \
  "$(bash_offers lumenquest render sun --at 2027-05-08T21 : 30 --sch)"
expect "bash, a place" 'Moab\,\ Utah\,\ United\ States' \
  "$(bash_offers lumenquest today --place 'moab\,\ u')"
mkdir -p "$scratch/a folder"
touch "$scratch/a plan.ics"
expect "bash, a file" "$scratch/a plan.ics" \
  "$(bash_offers lumenquest plans import "$scratch/a\\ pl")"
expect "bash, a folder" "$scratch/a folder" "$(bash_offers lumenquest gallery "$scratch/a")"
fish_offers() {
  fish --no-config -c "source $scratch/moved/share/fish/vendor_completions.d/lumenquest.fish
    complete -C '$1'" | cut -f 1
}
expect "fish, a command" render "$(fish_offers 'lumenquest ren')"
expect "fish, a value" --scheme=dark "$(fish_offers 'lumenquest render --scheme=d')"
expect "fish, a file" "a plan.ics" "$(cd "$scratch" && fish_offers 'lumenquest plans import a\ pl')"
expect "fish, a place" "Moab, Utah, United States" \
  "$(fish_offers 'lumenquest today --place "Moab, U')"
zsh -n "$scratch/moved/share/zsh/site-functions/_lumenquest" || fail "zsh cannot read its function"

# Nothing was written beside what was asked for.
written=$(find "$scratch/home" -type f -not -path '*/fish/*')
[ -z "$written" ] || fail "files in the home folder: $written"
[ "$failures" -eq 0 ]
