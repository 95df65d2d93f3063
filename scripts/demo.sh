#!/usr/bin/env bash
# The demo: a simulated network of 30 devices on a loopback multicast group,
# opened, discovered, listed, every label read, one label written and read back;
# then a motor winked, moved to 50 % while its position is printed, all its
# settings read, and a DC motor's speeds set; a group of motors moved at once; life
# counters and network statistics read and the error counters cleared; last a firmware
# package built, signed with keys made for the run, and a motor updated with it.
# Settings and the device registry live in a temporary folder for the run.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${VRN_BUILD_DIR:-$top/build}
"$top/scripts/setup.sh"

bin=$build/bin
work=$(mktemp -d)
sim_pid=
cleanup() {
  [ -n "$sim_pid" ] && kill -TERM "$sim_pid" 2>/dev/null && wait "$sim_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data QT_QPA_PLATFORM=offscreen

step() { printf '\n== %s\n' "$*"; }
vrnconfig() { "$bin/vrnconfig" "$@"; }

step "Starting the simulator: 30 devices on multicast group 239.255.42.1:47001 (loopback only)"
"$bin/vrnsim" --mcast 239.255.42.1:47001 --bind 127.0.0.1 --seed 42 --time-scale 2 \
  --devices std:10,motor:8,dcmotor:4,lru50:2,tx50dc:2,tx30:2,settingtool:2 >"$work/sim.out" 2>"$work/sim.err" &
sim_pid=$!
for _ in $(seq 50); do [ -s "$work/sim.out" ] && break; sleep 0.1; done
bus=$(head -n 1 "$work/sim.out")
[ -n "$bus" ] || { echo "the simulator did not start:"; cat "$work/sim.err"; exit 1; }
echo "bus identifier: $bus"

step "Opening the bus (remembered for the next commands)"
vrnconfig open "$bus"

step "Discovering the nodes"
vrnconfig discover

step "The device registry"
vrnconfig list --sort nodeid

step "Reading the label of every network node (setting tools have none)"
vrnconfig get label type:std

first=$(vrnconfig list --sort nodeid | awk 'NR == 2 { print $1 }')
step "Writing the label of device $first, then reading it back"
vrnconfig set label "$first" "Demo blind"
vrnconfig get label "$first"

step "The registry now"
vrnconfig list --sort label | sed -n 1,6p

motor=$(vrnconfig list --sort nodeid | awk '$3 == "motor" { print $1; exit }')
dc=$(vrnconfig list --sort nodeid | awk '$3 == "TX30" { print $1; exit }')
step "Winking motor $motor, then moving it to 50 % while watching its position"
vrnconfig wink "$motor"
vrnconfig move "$motor" to 50
vrnconfig watch position "$motor"

step "Every setting of motor $motor"
for what in direction limits ips position; do vrnconfig get "$what" "$motor"; done

step "Setting the rolling speeds of DC motor $dc, then reading them back"
vrnconfig get speed "$dc"
vrnconfig set speed "$dc" 24 18 8
vrnconfig get speed "$dc"
vrnconfig get ramp "$dc"

step "Groups: motor $motor put in group 0x0F0042, every motor's groups read, the groups known, the group moved to 25 %"
vrnconfig set groups "$motor" 0x0F0042
vrnconfig get groups type:motor >/dev/null
vrnconfig group list
vrnconfig group move 0x0F0042 to 25
vrnconfig watch position "$motor"

step "Life counters of motor $motor (its moves above are counted) and the network statistics of both motors"
vrnconfig get diag "$motor"
vrnconfig get stats "$motor" "$dc"
step "Clearing the error counters of every network node"
vrnconfig --yes reset stats type:std --errors | tail -n 3

step "Firmware: keys made for this run, a package built and signed, the catalogue, a check, an update of motor $motor"
"$bin/vrnfwpack" keygen "$work/fw.secret" "$work/fw.keys"
mkdir -p "$work/firmware"
head -c 4096 /dev/urandom >"$work/image.bin"
"$bin/vrnfwpack" build --key "$work/fw.secret" --types motor --version 9.1.0 "$work/image.bin" \
  "$work/firmware/motor-9.1.0.bpk"
vrnconfig firmware list --folder "$work/firmware" --keys "$work/fw.keys"
vrnconfig firmware check "$motor"
vrnconfig firmware update "$motor"
vrnconfig firmware check "$motor"

step "Stopping the simulator"
kill -TERM "$sim_pid"; wait "$sim_pid" || true; sim_pid=
tail -n 2 "$work/sim.err"
