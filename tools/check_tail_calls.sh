#!/usr/bin/env bash
# Checks on the object code that each of the 98 transport forwarders costs its tests and one jump: no call, no stack.
# Usage: check_tail_calls.sh LIBRARY
set -euo pipefail
library=${1:?usage: check_tail_calls.sh LIBRARY}

objdump --disassemble --no-show-raw-insn --no-addresses "$library" | awk -v expected=98 '
    function finish() {
        if (name == "") return
        ++forwarders
        if (jumps != 1) problem = problem " " jumps " indirect jumps instead of one;"
        if (problem != "") { print name ":" problem; ++bad }
    }
    /^<.*>:$/ {
        finish()
        name = ""
        if ($0 ~ /^<_Uc_[A-Za-z0-9_]+(@@?ORVI_[A-Z0-9_]+)?>:$/) { name = substr($0, 2, length($0) - 3); jumps = 0; problem = "" }
        next
    }
    name != "" && $1 ~ /^(bnd|notrack)$/ { $1 = ""; $0 = $0 }
    name != "" && $1 ~ /^call/ { problem = problem " calls;" }
    name != "" && $1 ~ /^(push|pop|enter|leave)/ { problem = problem " uses the stack (" $1 ");" }
    name != "" && $1 ~ /^(sub|add|lea)/ && $NF ~ /%rsp$/ { problem = problem " uses the stack (" $1 ");" }
    name != "" && $1 ~ /^jmp/ && $2 ~ /^\*/ { ++jumps }
    END {
        finish()
        if (forwarders != expected) { print "found " forwarders + 0 " forwarders instead of " expected; exit 1 }
        if (bad) exit 1
        print forwarders " forwarders: tests and one tail jump each"
    }'
