#!/usr/bin/env bash
# Which folder of src/ may include which: the arrows run one way. Prints every include that breaks a rule, and every
# rule that nothing needs any more.
# usage: include_check.sh SOURCE_FOLDER
set -euo pipefail
cd "$1/src"

# What an include may be, as "FILE > INCLUDED". core is on top: it starts and ends everything.
rules='
platform/.* > base/.*
(storage|language|ui|wire|mapshop|webfile|account|core)/.* > (base|platform)/.*
(language|ui|wire|mapshop|webfile|account|core)/.* > storage/.*
(ui|account|core)/.* > language/.*
(account|core)/.* > (ui|wire)/.*
mapshop/.* > wire/.*
account/.* > resources/.*
core/.* > (webfile|account)/.*
# An exchange shows the wait cursor while it waits.
wire/web_binary_cgi\.cpp > ui/busy_cursor\.h'
rules=$(grep '>' <<<"$rules")

folders=$(printf '%s|' */ | tr -d /)
# All includes that lead from one folder to another.
crossing=$(grep -rHoE "^#include \"(${folders%|})/[^\"]+" --include='*.h' --include='*.cpp' -- * |
  sed 's|:#include "| > |' | grep -vE '^([a-z]+)/.* > \1/')

failed=0
grep -vxE "$rules" <<<"$crossing" && failed=1
while read -r rule; do
  grep -qxE "$rule" <<<"$crossing" || { echo "nothing needs the rule $rule"; failed=1; }
done <<<"$rules"
exit $failed
