#!/usr/bin/env bash
# test-package.sh PACKAGE.deb: as root, on a bare Debian, installs the package as a person would, uses it on a virtual Xfce
# desktop, upgrades it while it runs, removes it and installs it again. For a system that may be thrown away: it installs
# other packages and makes a user. Prints each step that went well and ends at the first that did not.
source "$(dirname "$0")/lib.sh"
[ $# -eq 1 ] || die "which package?"
[ "$(id -u)" -eq 0 ] || die "needs root"
id=example.ostrel.Ostrel
user=ostrel-test
scratch=$(mktemp -d)
chmod 755 "$scratch"
cp "$1" "$scratch/ostrel.deb"
package=$scratch/ostrel.deb
export DEBIAN_FRONTEND=noninteractive

passed() { printf 'ok   %s\n' "$*"; }
# comes_true WHAT COMMAND...: once the command succeeds, within a minute.
comes_true() {
  local what=$1 deadline=$((SECONDS + 60))
  shift
  until "$@" >/dev/null 2>&1; do
    if [ $SECONDS -ge $deadline ]; then
      tail -n 20 "$scratch"/*.log >&2 || true
      die "in vain: $what"
    fi
    sleep 0.1
  done
  passed "$what"
}
install() { apt-get install -q -y "$@" >"$scratch/apt.out" 2>&1 || { cat "$scratch/apt.out" >&2 && die "apt-get install $*"; }; }

say "$(. /etc/os-release && echo "$PRETTY_NAME"), $(dpkg-deb -f "$package" Package Version | tr '\n' ' ')"
apt-get update -q >/dev/null
names() { apt-get install -s "$@" | sed -n 's/^Inst \([^ ]*\).*/\1/p' | sort; }
more=$(comm -13 <(names task-xfce-desktop) <(names task-xfce-desktop "$package"))
count=$(wc -w <<<"$more")
[ "$count" -le 25 ] || die "$count packages beyond a plain Xfce desktop:" $more
passed "$count packages beyond a plain Xfce desktop, itself included:" $more

# Whatever bears the name on the system, but for places that come and go.
named() { find / -xdev -iname '*ostrel*' -not -path '/tmp/*' -not -path '/proc/*' -not -path '/var/cache/apt/*' | sort; }
named_before=$(named)
before=$(dpkg-query -W | wc -l)
install "$package"
passed "apt install, $(($(dpkg-query -W | wc -l) - before)) packages on this bare system"
runs=$(ostrel --version)
passed "$runs"
install --no-install-recommends at-spi2-core dbus libglib2.0-bin procps x11-utils xdotool xfce4-panel xfwm4 xterm xvfb

# A person's desktop.
useradd --create-home --shell /bin/bash $user
home=/home/$user
runtime=$scratch/runtime
mkdir -m 700 "$runtime"
chown $user "$runtime"
environment=(HOME="$home" USER=$user PATH=/usr/bin:/bin LANG=C.UTF-8 XDG_RUNTIME_DIR="$runtime" XDG_SESSION_TYPE=x11
  XDG_CURRENT_DESKTOP=XFCE GIO_USE_VFS=local)
as_user() { (cd "$home" && exec runuser -u $user -- env -i "${environment[@]}" "$@"); }
started=()
# start NAME COMMAND...: leaves it running until the script's end.
start() {
  as_user "${@:2}" >"$scratch/$1.log" 2>&1 </dev/null &
  started+=($!)
}
finish() {
  [ ${#started[@]} -eq 0 ] || kill "${started[@]}" 2>/dev/null || true
  pkill -u $user 2>/dev/null || true
  wait || true
  rm -rf "$scratch"
}
trap finish EXIT

mkfifo "$scratch/display" "$scratch/bus"
as_user Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1400x900x24 3>"$scratch/display" >"$scratch/server.log" 2>&1 &
started+=($!)
environment+=(DISPLAY=":$(head -n 1 "$scratch/display")")
as_user dbus-daemon --session --nofork --nopidfile --nosyslog --print-address=3 3>"$scratch/bus" >"$scratch/bus.log" 2>&1 &
started+=($!)
environment+=(DBUS_SESSION_BUS_ADDRESS="$(head -n 1 "$scratch/bus")")
settings=$home/.config/xfce4/xfconf/xfce-perchannel-xml
as_user mkdir -p "$settings"
as_user tee "$settings/xfce4-panel.xml" >/dev/null <<'EOF'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray"/>
  </property>
</channel>
EOF
start manager xfwm4
start panel xfce4-panel
start terminal xterm -geometry 60x20+300+200 -e sleep 1000
manager_runs() { as_user xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
comes_true "xfwm4 runs" manager_runs
window() { as_user xdotool search --onlyvisible --class "$1" | head -n 1; }
has_window() { [ -n "$(window "$1")" ]; }
comes_true "an application's window is there" has_window XTerm
terminal=$(window XTerm)

instance() { pgrep -u $user -x ostrel | head -n 1; }
is_running() { [ -n "$(instance)" ]; }
is_gone() { ! is_running; }
doctor() { as_user ostrel doctor; }

# The first minute.
start menu gio launch /usr/share/applications/$id.desktop
comes_true "started from its menu entry, it asks for consent in a window of its class" has_window $id
# The window may be gone before the key comes up again, which xdotool takes for a failure.
as_user xdotool key --window "$(window $id)" Escape || true
refused() { [ "$(as_user cat "$home/.local/share/ostrel/accessibility-consent")" = refused ]; }
comes_true "not allowed" refused
in_tray() {
  as_user gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher \
    --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher RegisteredStatusNotifierItems |
    grep -F "StatusNotifierItem-$(instance)-"
}
comes_true "its item stands in the tray" in_tray
quit() {
  kill "$(instance)"
  comes_true "it ends when told to" is_gone
}
quit
start menu gio launch /usr/share/applications/$id.desktop
comes_true "its item stands in the tray again" in_tray
if has_window $id; then die "it asks again"; fi
passed "it does not ask again"
doctor >"$scratch/doctor" && die "the diagnosis says that nothing is missing"
grep '^Missing: ' "$scratch/doctor"
as_user ostrel accessibility grant
is_ready() { doctor >"$scratch/doctor" && grep -q '^Event tap  *installed$' "$scratch/doctor"; }
comes_true "nothing is missing" is_ready

# A click.
parent() { as_user xwininfo -tree -id "$1" | sed -n 's/.*Parent window id: \(0x[0-9a-f]*\).*/\1/p'; }
# The middle of the second button from the right: maximise. The corners are smaller than buttons.
maximise_button() {
  as_user xwininfo -tree -id "$(parent "$terminal")" |
    sed -n 's/.*: ()  \([0-9]*\)x\([0-9]*\)+[0-9-]*+[0-9-]*  +\([0-9]*\)+\([0-9]*\)$/\3 \4 \1 \2/p' |
    awk '$3 > 16 && $3 < 40 && $4 > 16 && $4 < 40 { print $1 + int($3 / 2), $2 + int($4 / 2) }' | sort -n | tail -n 2 | head -n 1
}
frame() { as_user xwininfo -id "$(parent "$terminal")" | awk -F: '/Absolute|Width|Height/ { printf "%d ", $2 }'; }
fills() { frame | tee "$scratch/frame.log" | grep -qx '32 56 1336 812 '; }
click_maximise() {
  as_user xdotool windowsize --sync "$terminal" 500 300 windowmove "$terminal" 300 200
  is_placed() { [[ "$(frame)" == "3"*" 2"* ]]; }
  comes_true "the window is elsewhere" is_placed
  place=$(maximise_button)
  [ -n "$place" ] || die "no maximise button: $(as_user xwininfo -tree -id "$(parent "$terminal")")"
  as_user xdotool mousemove $place click 1
  comes_true "a click on maximise, at $place, fills the display less its margins" fills
}
click_maximise

# Opening at login, by its switch in the settings.
as_user ostrel settings general
comes_true "the settings open" has_window $id
eval "$(as_user xdotool getwindowgeometry --shell "$(window $id)" | grep -E '^[XY]=')"
is_registered() { as_user grep -q '^Exec="/usr/bin/ostrel"$' "$home/.config/autostart/$id.desktop"; }
as_user xdotool mousemove $((X + 645)) $((Y + 146)) click 1
comes_true "opens at login once switched on" is_registered

# An upgrade while it runs.
process=$(instance)
dpkg-deb -R "$package" "$scratch/next"
sed -i 's/^Version: .*/&+next/' "$scratch/next/DEBIAN/control"
dpkg-deb --root-owner-group -b "$scratch/next" "$scratch/next.deb" >/dev/null
install "$scratch/next.deb"
[ "$(instance)" = "$process" ] || die "the upgrade ended the running one"
[[ "$(readlink "/proc/$process/exe")" == *deleted* ]] || die "the upgrade has left the old file"
passed "upgraded to $(dpkg-query -W -f '${Version}' ostrel), the running one goes on"
click_maximise
is_registered || die "the upgrade has changed what opens at login"
quit
start login gio launch "$home/.config/autostart/$id.desktop"
comes_true "the login's entry starts it" in_tray
[ "$(readlink "/proc/$(instance)/exe")" = /usr/bin/ostrel ] || die "that is not the new one"
passed "it is the new one"
click_maximise
quit

# Removal, with the files of the package and whatever else may have been left.
kept() { as_user find .config/ostrel .config/autostart .local/share/ostrel .local/state/ostrel -type f 2>/dev/null | sort | xargs -r md5sum; }
preferences=$(kept)
mapfile -t files < <(dpkg -L ostrel)
remains() {
  local file
  for file in "${files[@]}"; do [ -d "$file" ] || [ ! -e "$file" ] || echo "$file"; done
  # Mail goes with the person, the list with the purge.
  comm -13 <(echo "$named_before") <(named) | grep -vE "^($home|$scratch|/var/mail/$user|/var/lib/dpkg/info/ostrel\.list)" || true
}
apt-get remove -q -y ostrel >/dev/null
[ -z "$(remains)" ] || die "removing leaves" $(remains)
passed "removed, nothing is left but the person's:" $(as_user find .config/ostrel .config/autostart .local/share/ostrel .local/state/ostrel -type f 2>/dev/null)
apt-get purge -q -y ostrel >/dev/null
[ -z "$(remains)" ] || die "purging leaves" $(remains)
install "$package"
[ "$(kept)" = "$preferences" ] || die "the person's files are not what they were"
start menu gio launch /usr/share/applications/$id.desktop
comes_true "purged and installed again, everything is in place" is_ready
click_maximise
quit
printf '\nAll well.\n'
