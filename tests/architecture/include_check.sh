#!/usr/bin/env bash
# Which folder of src/ may include which: the arrows run one way. Prints every include that breaks a rule, and every
# exception below that nothing needs any more.
# usage: include_check.sh SOURCE_FOLDER
set -euo pipefail
cd "$1/src"

# Each folder with all that it may include beside itself. core is on top: it starts and ends everything.
declare -A may_include=(
  [base]=""
  [resources]=""
  [platform]="base"
  [storage]="base platform"
  [language]="base platform storage"
  [ui]="base platform storage language"
  [wire]="base platform storage"
  [mapshop]="base platform storage wire"
  [webfile]="base platform storage"
  [account]="base platform storage language ui wire resources"
  [core]="base platform storage language ui wire webfile account"
)

# Files that include what their folder may not, each with its reason.
exceptions=(
  # The session class is declared in core, and its account operations are defined in account.
  "account/create_account.cpp core/service_manager.h"
  "account/credentials.cpp core/service_manager.h"
  "account/device_name.cpp core/service_manager.h"
  "account/session_token.cpp core/service_manager.h"
  "account/sign_in.cpp core/service_manager.h"
  # An exchange shows the wait cursor while it waits.
  "wire/web_binary_cgi.cpp ui/busy_cursor.h"
)

failed=0
used=" "
for folder in */; do
  [[ -n ${may_include[${folder%/}]+known} ]] || { echo "no rule for $folder"; failed=1; }
done
while IFS=: read -r file included; do
  from=${file%%/*}
  to=${included%%/*}
  [[ $included != */* || -z ${may_include[$to]+known} ]] && continue # a header of its own folder, or of the public ones
  [[ $from == "$to" || " ${may_include[$from]-} " == *" $to "* ]] && continue
  if printf '%s\n' "${exceptions[@]}" | grep -qxF "$file $included"; then
    used+="$file $included "
  else
    echo "$file may not include $included"
    failed=1
  fi
done < <(grep -rHoE '^#include "[^"]+"' --include='*.h' --include='*.cpp' . | sed -E 's|^\./||; s|:#include "(.*)"|:\1|')

for exception in "${exceptions[@]}"; do
  [[ $used == *" $exception "* ]] && continue
  echo "$exception is listed, but nothing needs it"
  failed=1
done
[[ $used != " " ]] || { echo "no include was found at all"; failed=1; }
exit $failed
