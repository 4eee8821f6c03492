#!/usr/bin/env bash
# Runs a command in a desktop session of its own: a session bus that starts no service by itself, and home and runtime
# directories that are gone afterwards. The user's own keyring is out of reach. Needs no display; works as root.
set -eu

session=$(mktemp -d)
trap 'rm -rf "$session"' EXIT
mkdir -m 700 "$session/home" "$session/runtime"
cat >"$session/bus.conf" <<END
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=$session/runtime</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
END

unset DISPLAY WAYLAND_DISPLAY GNOME_KEYRING_CONTROL XDG_DATA_HOME XDG_CONFIG_HOME XDG_CACHE_HOME
export TSAN_OPTIONS="suppressions=$(dirname "$0")/tsan.supp:${TSAN_OPTIONS:-}"
export HOME=$session/home XDG_RUNTIME_DIR=$session/runtime
dbus-run-session --config-file="$session/bus.conf" -- "$@"
