#!/usr/bin/env bash
# Words that do not belong in the tree. The patterns are put together from pieces, so that this file passes too.
source "$(dirname "$0")/lib.sh"

# Reasons stand where they apply; nobody should need a second document to understand a line.
files_of . ':!DEVELOPERS.md' ':!*.png' ':!*.icns'
outside='\b[sS][pP][eE][cC](ified by|ification|ifications)?\b'
outside+='|\b[pP]arts? [1-5]\.[0-9]'
forbid 'Give the reason itself instead of a reference to another document:' "$outside" "${files[@]}"

# Nothing depends on where one person's machine keeps things.
machine='(^|[^A-Za-z0-9_.])/(ho''me|ro''ot|Us''ers|wo''rk)/[A-Za-z]'
forbid 'Paths of one machine:' "$machine" "${files[@]}"

later='\b(TO''DO|FIX''ME|XX''X|HA''CK)\b'
files_of . ':!*.md' ':!*.png' ':!*.icns'
forbid 'Left for later:' "$later" "${files[@]}"
exit $failed
