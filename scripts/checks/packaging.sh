#!/usr/bin/env bash
# What is installed beside the program tells what the program does, and is what the desktop conventions ask for.
source "$(dirname "$0")/lib.sh"

commands=$(sed -n '/R"(Usage:/,/^)"/s/^  \([a-z-]*\).*/\1/p' Ostrel/CommandLine.cpp)
[ -n "$commands" ] || die "Ostrel/CommandLine.cpp has no usage any more"
for command in $commands; do
  grep -q "^\*$command\*" packaging/linux/ostrel.1.scd.in || { echo "The manual page does not know '$command'" && failed=1; }
  for file in packaging/linux/completions/*; do
    grep -qE -e "(^|[^a-z])${command#--}([^a-z]|\$)" "$file" || { echo "$file does not know '$command'" && failed=1; }
  done
done

version=$(sed -n 's/^project(Ostrel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
newest=$(sed -n 's/^## \[\([0-9.]*\)\] - .*/\1/p' CHANGELOG.md | head -1)
[ "$version" = "$newest" ] || { echo "CHANGELOG.md ends with $newest, the project is $version" && failed=1; }

made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
id=example.ostrel.Ostrel
fill() { sed -e "s/@OSTREL_APPLICATION_ID@/$id/; s/@OSTREL_WEBSITE_HOST@/ostrel.example/; s/@PROJECT_VERSION@/$version/" "$1"; }
fill packaging/linux/application.desktop.in >"$made/$id.desktop"
desktop-file-validate "$made/$id.desktop" || failed=1
awk -f packaging/linux/releases.awk CHANGELOG.md >"$made/releases"
fill packaging/linux/metainfo.xml.in | sed -e "/@releases@/{s/@releases@//;r $made/releases" -e '}' >"$made/$id.metainfo.xml"
# Notes are no findings: it has never heard of the top-level domain, and 0.16 not of "developer".
found=$(appstreamcli validate --no-net "$made/$id.metainfo.xml" | grep -E '^[EW]: ' || true)
[ -z "$found" ] || { printf '%s\n' "$found" && failed=1; }
fill packaging/linux/ostrel.1.scd.in | scdoc >"$made/ostrel.1" || failed=1
man --warnings -E UTF-8 -l -Tutf8 -Z "$made/ostrel.1" 2>&1 >/dev/null | grep . && failed=1
exit $failed
