# shellcheck shell=bash disable=SC2034
# What the scripts of this folder share; they source it. The shell of macOS is bash 3.2.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
script=$(basename "$0")
bundle_name="Ovra Tessel Lumora.app"

refuse() {
    echo "$script: $1" >&2
    exit 1
}

# need TOOL WHERE-IT-COMES-FROM
need() {
    command -v "$1" >/dev/null || refuse "$1 is missing: $2"
}

# need_setting VARIABLE WHAT-IT-NAMES
need_setting() {
    [[ -n ${!1:-} ]] || refuse "$1 is not set: $2"
}

# need_path PATH HOW-IT-IS-MADE
need_path() {
    [[ -e $1 ]] || refuse "$1 does not exist: $2"
}

xcode_tools="it comes with Xcode's command line tools (xcode-select --install)"
