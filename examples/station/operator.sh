#!/usr/bin/env bash
# operator.sh 'key CODE' | 'look WHAT': has somebody at the terminal do what the station itself cannot. A line with a
# machine for it names that in $STATION_JIG.
set -euo pipefail
case $1 in
    key\ *) echo "Press the key ${1#key } of the set." >/dev/tty ;;
    look\ *)
        read -rp "Does the panel show ${1#look }? [y/n] " answer </dev/tty 2>/dev/tty
        [[ $answer == [yY]* ]]
        ;;
    *) exit 2 ;;
esac
