#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs a program on the display of the environment once a window manager has taken that over.
#   under-window-manager.sh WINDOW-MANAGER PROGRAM [ARGUMENT...]

"$1" &
manager=$!
trap 'kill "$manager" 2>/dev/null' EXIT
shift

# The property appears when the manager is ready to manage.
until xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; do
    kill -0 "$manager" || exit 1
    sleep 0.1
done
"$@"
