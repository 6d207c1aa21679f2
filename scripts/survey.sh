#!/usr/bin/env bash
# survey.sh [WINDOW-MANAGER...] [APPLICATION...]: what Ostrel does with the buttons of real applications, as a table.
# Installs what is named (default: everything, which takes about four hours), runs each application under each window
# manager on a display of its own, and clicks minimise, zoom and close as often as it takes to learn them. The machine
# should have nothing else to do: a click that waits longer than Ostrel's deadline counts as native. Those of the rows'
# processes that write anything do so to build/survey.
source "$(dirname "$0")/lib.sh"

# Name, Debian package, command.
window_managers='
openbox   openbox       openbox --replace
xfwm4     xfwm4         xfwm4 --replace
kwin_x11  kwin-x11      kwin_x11 --replace
marco     marco         marco --replace
metacity  metacity      metacity --replace
mutter    mutter        mutter --x11 --replace
muffin    muffin        muffin --replace
fluxbox   fluxbox       fluxbox
icewm     icewm         icewm
fvwm3     fvwm3         fvwm3 --replace
wmaker    wmaker        wmaker
jwm       jwm           jwm
'
# Firefox is the same application twice: with a title bar of its own, and with the window manager's.
applications='
xterm                  xterm                 xterm -e sleep 1000
galculator             galculator            galculator
wish                   tk                    wish
fluid                  fluid                 fluid
chromium               chromium              chromium --no-sandbox --no-first-run --password-store=basic --disable-gpu about:blank
firefox                firefox-esr           firefox-esr --no-remote --profile $profile/own about:blank
firefox-system-title   firefox-esr           firefox-esr --no-remote --profile $profile/system about:blank
thunderbird            thunderbird           thunderbird --no-remote --profile $profile/own
libreoffice            libreoffice-writer    soffice --writer --norestore --nologo
gimp                   gimp                  gimp --no-splash
evince                 evince                evince
file-roller            file-roller           file-roller
nautilus               nautilus              nautilus --new-window
gnome-text-editor      gnome-text-editor     gnome-text-editor --standalone
gnome-calculator       gnome-calculator      gnome-calculator
kate                   kate                  kate --new
dolphin                dolphin               dolphin --new-window
vlc                    vlc                   vlc --no-qt-privacy-ask
audacity               audacity              audacity
inkscape               inkscape              inkscape --actions=window-open
emacs                  emacs-gtk             emacs --no-init-file
jedit                  jedit                 jedit
'

row() { awk -v name="$2" '$1 == name' <<<"$1"; }
names() { awk 'NF { print $1 }' <<<"$1"; }
version() { dpkg-query --show --showformat='${Version}' "$1" 2>/dev/null | sed 's/^[0-9]*://; s/[-+].*//'; }

managers=() programs=()
for name in "$@"; do
  if [ -n "$(row "$window_managers" "$name")" ]; then
    managers+=("$name")
  elif [ -n "$(row "$applications" "$name")" ]; then
    programs+=("$name")
  else
    die "neither a window manager nor an application of the survey: $name"
  fi
done
[ ${#managers[@]} -gt 0 ] || mapfile -t managers < <(names "$window_managers")
[ ${#programs[@]} -gt 0 ] || mapfile -t programs < <(names "$applications")

scripts/setup.sh build desktop test
build release ostrel ostrel_survey
packages=()
for name in "${managers[@]}"; do read -r _ package _ < <(row "$window_managers" "$name") && packages+=("$package"); done
for name in "${programs[@]}"; do read -r _ package _ < <(row "$applications" "$name") && packages+=("$package"); done
apt-get install -q -y --no-install-recommends "${packages[@]}" >/dev/null </dev/null ||
  die "not everything could be installed; as root: apt-get install ${packages[*]}"

folder=$PWD/build/survey
mkdir -p "$folder"

echo "| window manager | application | minimise | zoom | close |"
echo "|---|---|---|---|---|"
for manager in "${managers[@]}"; do
  read -r _ manager_package start < <(row "$window_managers" "$manager")
  for program in "${programs[@]}"; do
    read -r _ package command < <(row "$applications" "$program")
    profile=$(mktemp -d)
    mkdir "$profile/own" "$profile/system"
    for kind in own system; do
      echo 'user_pref("browser.aboutwelcome.enabled", false); user_pref("datareporting.policy.firstRunURL", "");' \
        "user_pref(\"browser.tabs.inTitlebar\", $([ $kind = own ] && echo 1 || echo 0));" >"$profile/$kind/user.js"
    done
    read -r -a arguments <<<"${command//\$profile/$profile}"
    result=$(timeout -k 5 300 build/release/ostrel_survey "$start" "${arguments[@]}" \
      2>"$folder/$manager-$program.log" </dev/null || true)
    echo "| $manager $(version "$manager_package") | $program $(version "$package") | ${result:-not run: no answer | | } |"
    rm -rf "$profile"
  done
done
