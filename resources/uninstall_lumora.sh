#!/bin/bash
# Removes Ovra Tessel Lumora: the bundle in /Applications or ~/Applications and what it has stored.
#
#   uninstall_lumora.sh [--skip-kill] [--user-only]
#
#   --skip-kill   leaves a running application alone; it ends by itself afterwards
#   --user-only   leaves /Applications and everything else outside the user's home folder alone
#
# Run with an administrator's rights it clears the home folder of the user who asked for them, with that user's own
# rights. It runs from any place, also a copy, and with the bash 3.2 of macOS. Exit status: 0 removed, 1 nothing found
# or something could not be removed, with the reason in the output, 64 not understood.
set -u

PATH=/usr/sbin:/usr/bin:/sbin:/bin
export PATH LC_ALL=C
IFS=$' \t\n'
unset CDPATH GLOBIGNORE

NAME='Ovra Tessel Lumora'
DOMAIN=com.ovra.tessel.OvraTesselLumora
SYSTEM=$(uname -s)
FOUND=0
FAILED=0

heading() { printf '========== %s ==========\n' "$1"; }

# A path as text: one line whatever characters it has, so that no folder's name can forge a message.
shown() {
    case $1 in
        *[[:cntrl:]]*) printf '%q' "$1" ;;
        *) printf '%s' "$1" ;;
    esac
}

failure() {
    FAILED=1
    printf '%s\n' "$1"
}

# Prints the first thing that rm complains of, which may be one of thousands. What is mounted in a folder of ours is
# not ours. All the complaints are read: rm would stop at one that it cannot write.
remove_tree() {
    if [[ $SYSTEM == Darwin ]]; then
        rm -rfx -- "$1" 2>&1 | sed -n 1p
    else
        rm -rf --one-file-system --preserve-root=all -- "$1" 2>&1 | sed -n 1p
    fi
}

# Whether a path's last component is a name that only this product uses.
bears_our_name() {
    local ours=1
    shopt -s nocasematch
    case ${1##*/} in
        *Ovra*Lumora* | com.ovra.tessel.* | .com.ovra.tessel.* | OvraTessel | OvraVarloNative) ours=0 ;;
        ConnectionSettings.plist | .lumora-* | lumora-download-*) ours=0 ;;
    esac
    shopt -u nocasematch
    return "$ours"
}

# Removes a file, a folder with its contents, or a link without what it leads to.
discard() {
    local path=$1 what='' problem
    if [[ $path != /*/* || (! -e $path && ! -L $path) ]] || ! bears_our_name "$path"; then
        return 0
    fi
    FOUND=1
    if [[ -L $path ]]; then
        what='the link '
        problem=$(rm -f -- "$path" 2>&1)
    else
        problem=$(remove_tree "$path")
        if [[ -d $path ]]; then
            # Folders that were copied write-protected have to be opened first.
            chmod -R u+rwX -- "$path" >/dev/null 2>&1
            problem=$(remove_tree "$path")
        fi
    fi
    if [[ -e $path || -L $path ]]; then
        failure "Could not remove $what$(shown "$path"): $(shown "${problem:-it is still there}")"
    else
        printf 'Removed %s%s\n' "$what" "$(shown "$path")"
    fi
}

# Each entry of a folder whose name begins so.
discard_beginning() {
    local path
    for path in "$1/$2"*; do
        discard "$path"
    done
}

# What a copy or a write that was cut off has left in a folder.
discard_unfinished() {
    local path
    for path in "$1"/.lumora-[0-9]*-*-[0-9]*; do
        discard "$path"
    done
}

discard_preferences() {
    if [[ $SYSTEM == Darwin ]]; then
        # The preferences server would write its own copy back.
        defaults delete "$1/$DOMAIN" >/dev/null 2>&1
    fi
    discard "$1/$DOMAIN.plist"
    discard "$1/.$DOMAIN.plist.lock"
    discard_beginning "$1" "$DOMAIN.plist.damaged-"
    discard_unfinished "$1"
}

# Folders that exist for this application alone on Linux, and only when nothing else is in them.
discard_empty() {
    local path
    for path in "$@"; do
        if [[ -d $path && ! -L $path ]]; then
            rmdir -- "$path" 2>/dev/null
        fi
    done
}

# Sets REPLY to the path of a folder's entry. On Linux the application finds the entries of a home folder whatever
# their case, the exact name first; macOS's volumes do that themselves.
entry() {
    local folder=$1 name=$2 candidate
    REPLY=$folder/$name
    if [[ $SYSTEM == Darwin || -e $REPLY || -L $REPLY ]]; then
        return 0
    fi
    shopt -s nocasematch
    for candidate in "$folder"/* "$folder"/.[!.]*; do
        if [[ ${candidate##*/} == "$name" && (-e $candidate || -L $candidate) ]]; then
            REPLY=$candidate
            break
        fi
    done
    shopt -u nocasematch
}

library_folder() {
    local part
    REPLY=$HOME_FOLDER
    for part in Library "$@"; do
        entry "$REPLY" "$part"
    done
}

# A home folder is an absolute path of an existing folder that is not the machine's root.
is_home() { [[ $1 == /* && -d $1 ]] && (cd -P -- "$1" 2>/dev/null && [[ $PWD != / && $PWD != // ]]); }

owner_of() {
    if [[ $SYSTEM == Darwin ]]; then
        stat -f %u -- "$1" 2>/dev/null
    else
        stat -c %u -- "$1" 2>/dev/null
    fi
}

home_of() {
    if [[ $SYSTEM == Darwin ]]; then
        dscl . -read "/Users/$1" NFSHomeDirectory 2>/dev/null | sed -n 's/^NFSHomeDirectory: //p'
    else
        getent passwd "$1" 2>/dev/null | cut -d : -f 6
    fi
}

# Sets USER_NAME and USER_ID to the person at the desk, who is not the administrator that the rights come from.
find_user() {
    local asked=''
    USER_ID=$(id -u)
    if [[ $USER_ID == 0 ]]; then
        if [[ ${SUDO_UID:-} =~ ^[0-9]+$ ]]; then
            asked=$SUDO_UID
        elif [[ ${PKEXEC_UID:-} =~ ^[0-9]+$ ]]; then
            asked=$PKEXEC_UID
        elif [[ $SYSTEM == Darwin ]]; then
            asked=$(stat -f %u /dev/console 2>/dev/null)
        fi
    fi
    if [[ -n $asked ]] && id -u -- "$asked" >/dev/null 2>&1; then
        USER_ID=$asked
    fi
    USER_NAME=$(id -un -- "$USER_ID" 2>/dev/null)
}

# Sets HOME_FOLDER, which stays empty when the user has none.
find_home() {
    HOME_FOLDER=
    if [[ $USER_ID == "$(id -u)" ]] && is_home "${HOME:-}"; then
        HOME_FOLDER=$HOME
    elif [[ -n $USER_NAME ]] && is_home "$(home_of "$USER_NAME")"; then
        HOME_FOLDER=$(home_of "$USER_NAME")
    fi
    while [[ $HOME_FOLDER == */ ]]; do
        HOME_FOLDER=${HOME_FOLDER%/}
    done
    # An administrator's shell may have kept another user's home: what is done there is done with that user's rights.
    if [[ $USER_ID == 0 && -n $HOME_FOLDER ]]; then
        USER_ID=$(owner_of "$HOME_FOLDER")
        if ! id -u -- "$USER_ID" >/dev/null 2>&1; then
            USER_ID=0 HOME_FOLDER=
        fi
    fi
}

# The processes of the user that run one of the installed bundles.
running() {
    local owner process program
    if [[ $SYSTEM == Darwin ]]; then
        ps -axww -o uid= -o pid= -o comm= | while read -r owner process program; do
            [[ $owner == "$USER_ID" ]] && is_program "$program" && printf '%s\n' "$process"
        done
        return 0
    fi
    for process in /proc/[0-9]*; do
        if [[ $(owner_of "$process") == "$USER_ID" ]]; then
            program=$(readlink -- "$process/exe" 2>/dev/null)
            is_program "${program% (deleted)}" && printf '%s\n' "${process#/proc/}"
        fi
    done
}

is_program() {
    [[ $1 == "$SYSTEM_BUNDLE/Contents/MacOS/$NAME" ||
        (-n $HOME_FOLDER && $1 == "$USER_BUNDLE/Contents/MacOS/$NAME") ]]
}

# Neither ended nor waiting for its parent to notice.
lives() {
    local state
    if [[ $SYSTEM == Darwin ]]; then
        kill -0 "$1" 2>/dev/null
    else
        { read -r state <"/proc/$1/stat"; } 2>/dev/null && [[ ${state##*) } != Z* ]]
    fi
}

# Prints processes and everything that they have started: the web view's processes write their data when they end.
families() {
    local all=" $* " processes process parent before=''
    processes=$(ps -ax -o pid= -o ppid= 2>/dev/null)
    while [[ $all != "$before" ]]; do
        before=$all
        while read -r process parent; do
            if [[ $all == *" $parent "* && $all != *" $process "* ]]; then
                all="$all$process "
            fi
        done <<END
$processes
END
    done
    printf '%s\n' "$all"
}

# Waits until none of the processes lives, or for so many seconds.
await_end() {
    local seconds=$1 process start=$SECONDS
    shift
    for process in "$@"; do
        while lives "$process" && [[ $((SECONDS - start)) -lt $seconds ]]; do
            sleep 0.1
        done
    done
}

stop_running() {
    local process
    for process in $1; do
        kill -TERM "$process" 2>/dev/null && printf 'Asked process %s to end\n' "$process"
    done
    # shellcheck disable=SC2086  # numbers
    await_end 10 $2
    for process in $1; do
        if lives "$process" && kill -KILL "$process" 2>/dev/null; then
            printf 'Ended process %s\n' "$process"
        fi
    done
    # shellcheck disable=SC2086
    await_end 10 $2
}

# Images that a download left mounted. The image tool of the bundle knows which volumes are its own.
detach_volumes() {
    local bundle line volume tool
    if [[ $SYSTEM == Darwin ]]; then
        return 0
    fi
    for bundle in "$USER_BUNDLE" "$SYSTEM_BUNDLE"; do
        tool=$bundle/Contents/MacOS/hdiutil
        if [[ -f $tool && -x $tool ]]; then
            "$tool" info 2>/dev/null </dev/null | while IFS= read -r line; do
                volume=${line##*$'\t'}
                if "$tool" detach "$volume" >/dev/null 2>&1 </dev/null; then
                    printf 'Detached %s\n' "$(shown "$volume")"
                fi
            done
        fi
    done
    discard_empty "/Volumes/.attachments.$(id -u)"
}

# What the application stores in a home folder, on either system.
clear_library() {
    library_folder 'Application Support'
    local support=$REPLY path
    for path in OvraLumoraNativeFolder OvraVarloNative; do
        entry "$support" "$path"
        discard "$REPLY"
    done
    discard_unfinished "$support"

    library_folder Logs
    local logs=$REPLY
    entry "$logs" OvraTessel
    local maker=$REPLY
    if [[ -L $maker ]]; then
        discard "$maker"
    else
        # The agent's own logs stand beside ours and stay.
        entry "$maker" OvraLumora
        discard "$REPLY"
        entry "$maker" ConnectionSettings.plist
        discard "$REPLY"
        discard_unfinished "$maker"
        discard_empty "$maker"
    fi

    library_folder Preferences
    discard_preferences "$REPLY"
    if [[ $SYSTEM == Darwin ]]; then
        clear_macos_library "$HOME_FOLDER/Library"
    else
        local preferences=$REPLY
        library_folder
        discard_empty "$support" "$logs" "$preferences" "$REPLY"
    fi
}

clear_macos_library() {
    discard_beginning "$1/Preferences/ByHost" "$DOMAIN."
    discard "$1/Saved Application State/$DOMAIN.savedState"
}

# Sets REPLY to the folder that the environment names, or else to the usual one in the home folder.
desktop_folder() {
    REPLY=$HOME_FOLDER/$2
    if [[ $1 == /* ]]; then
        REPLY=$1
    fi
}

# What the web view keeps: storage, cookies, caches.
clear_web_data() {
    local folder
    if [[ $SYSTEM == Darwin ]]; then
        for folder in Caches WebKit HTTPStorages; do
            discard "$HOME_FOLDER/Library/$folder/$DOMAIN"
        done
        for folder in Cookies HTTPStorages; do
            discard "$HOME_FOLDER/Library/$folder/$DOMAIN.binarycookies"
        done
    else
        desktop_folder "${XDG_DATA_HOME:-}" .local/share
        discard "$REPLY/$DOMAIN"
        desktop_folder "${XDG_CACHE_HOME:-}" .cache
        discard "$REPLY/$DOMAIN"
    fi
}

# What the per-user installer has put in the user's menus.
clear_menus() {
    local data size icon
    desktop_folder "${XDG_DATA_HOME:-}" .local/share
    data=$REPLY
    discard "$data/applications/$DOMAIN.desktop"
    for size in "$data"/icons/hicolor/*; do
        for icon in "$size/apps/$DOMAIN".png "$size/apps/$DOMAIN".svg; do
            if [[ -e $icon || -L $icon ]]; then
                discard "$icon"
                discard_empty "$size/apps" "$size"
            fi
        done
    done
    discard_empty "$data/applications" "$data/icons/hicolor" "$data/icons"
}

# Downloads that were cut off. Anybody may put something of that name there.
discard_downloads() {
    local path
    for path in /tmp/lumora-download-??????; do
        if [[ -O $path ]]; then
            discard "$path"
        fi
    done
}

# An application that is left running ends a little later, and its web view then writes once more. Nobody waits for
# this.
clear_once_more() {
    # shellcheck disable=SC2086  # numbers
    await_end 86400 $STILL_RUNNING
    clear_web_data
}

# Everything in the home folder. Runs with the user's own rights, so that a link planted there opens nothing else.
clear_home() {
    discard "$USER_BUNDLE"
    if [[ $FAILED == 1 ]]; then
        exit 1
    fi
    discard_unfinished "$HOME_FOLDER/Applications"
    clear_library
    clear_web_data
    if [[ $SYSTEM != Darwin ]]; then
        discard_empty "$HOME_FOLDER/Applications"
        clear_menus
        discard_downloads
    fi
    if [[ $FAILED == 1 ]]; then
        exit 1
    fi
    if [[ -n $STILL_RUNNING ]]; then
        clear_once_more </dev/null >/dev/null 2>&1 &
    fi
    exit $((FOUND == 1 ? 0 : 3))
}

# Runs one of the operations above as the user, in a shell of its own: this file may lie where he cannot read it.
as_user() {
    local program
    program="set -u; $(declare -p NAME DOMAIN SYSTEM HOME_FOLDER USER_BUNDLE SYSTEM_BUNDLE USER_ID STILL_RUNNING)
FOUND=0 FAILED=0
$(declare -f)
$1"
    if [[ $USER_ID == "$(id -u)" ]]; then
        /bin/bash -c "$program"
    elif [[ $SYSTEM == Darwin ]]; then
        (cd / && sudo -n -u "#$USER_ID" -H /bin/bash -c "$program")
    else
        (cd / && unset XDG_DATA_HOME XDG_CACHE_HOME &&
            setpriv --reuid "$USER_ID" --regid "$(id -g -- "$USER_ID")" --init-groups /bin/bash -c "$program")
    fi
}

# The Debian package that a file belongs to; empty when none does.
package_of() {
    if command -v dpkg-query >/dev/null 2>&1; then
        dpkg-query -S "$1" 2>/dev/null | sed -n '1s/: .*//p'
    fi
}

# Whether all of a folder can be removed by who runs this, found out before anything is.
removable() {
    local parent=${1%/*} folder
    if [[ $(id -u) == 0 ]]; then
        return 0
    fi
    if [[ ! -w $parent || (-k $parent && ! -O $parent && ! -O $1) ]]; then
        return 1
    fi
    if [[ ! -L $1 ]]; then
        # One's own folders can be opened, others' cannot.
        find "$1" -type d -print0 2>/dev/null | while IFS= read -r -d '' folder; do
            [[ -w $folder || -O $folder ]] || exit 1
        done
    fi
}

refuse_without_rights() {
    if [[ ! -e $SYSTEM_BUNDLE && ! -L $SYSTEM_BUNDLE ]] || [[ $(id -u) == 0 ]]; then
        return 0
    fi
    local package
    package=$(package_of "$SYSTEM_BUNDLE/Contents/Info.plist")
    if [[ -n $package ]]; then
        printf '%s\n' "$SYSTEM_BUNDLE belongs to the Debian package $package. Nothing was removed." \
            "An administrator removes it with: apt purge $package"
        exit 1
    fi
    if ! removable "$SYSTEM_BUNDLE"; then
        printf '%s\n' "$SYSTEM_BUNDLE can only be removed by an administrator. Nothing was removed." \
            'Run this script with sudo, or with --user-only to clear your own home folder alone.'
        exit 1
    fi
}

purge_package() {
    local output
    FOUND=1
    if output=$(DEBIAN_FRONTEND=noninteractive dpkg --purge "$1" 2>&1 </dev/null); then
        printf 'Removed the Debian package %s\n' "$1"
    else
        failure "Could not remove the Debian package $1:"
        printf '%s\n' "$output"
    fi
}

clear_system() {
    local package='' folder
    if [[ -f $SYSTEM_BUNDLE/Contents/Info.plist ]]; then
        package=$(package_of "$SYSTEM_BUNDLE/Contents/Info.plist")
    fi
    if [[ -n $package ]]; then
        purge_package "$package"
    else
        discard "$SYSTEM_BUNDLE"
    fi
    discard_unfinished /Applications
    for folder in '/Library/Preferences' '/Library/Managed Preferences'; do
        clear_system_preferences "$folder"
    done
}

# These belong to the whole machine: who may not write them leaves them, and that is no failure.
clear_system_preferences() {
    local file=$1/$DOMAIN.plist package=''
    if [[ -e $file ]]; then
        package=$(package_of "$file")
    fi
    if [[ -n $package ]]; then
        printf 'Left %s, which belongs to the Debian package %s\n' "$file" "$package"
    elif [[ -w $1 ]]; then
        discard_preferences "$1"
        if [[ $SYSTEM != Darwin ]]; then
            discard_empty "$1"
        fi
    elif [[ -e $file ]]; then
        printf 'Left %s, which only an administrator may remove\n' "$file"
    fi
}

usage() {
    printf '%s\n' "usage: ${0##*/} [--skip-kill] [--user-only]"
    exit "$1"
}

main() {
    local kill_first=1 user_only=0 option processes
    for option in "$@"; do
        case $option in
            --skip-kill) kill_first=0 ;;
            --user-only) user_only=1 ;;
            --help) usage 0 ;;
            *) usage 64 ;;
        esac
    done

    heading "Uninstalling $NAME"
    find_user
    find_home
    SYSTEM_BUNDLE="/Applications/$NAME.app"
    USER_BUNDLE="$HOME_FOLDER/Applications/$NAME.app"
    if [[ $user_only == 0 ]]; then
        refuse_without_rights
    fi

    processes=$(running)
    STILL_RUNNING=
    if [[ -n $processes ]]; then
        # shellcheck disable=SC2086  # numbers
        STILL_RUNNING=$(families $processes)
    fi
    if [[ $kill_first == 1 ]]; then
        stop_running "$processes" "$STILL_RUNNING"
    fi
    if [[ -n $HOME_FOLDER ]]; then
        as_user detach_volumes
    fi
    if [[ $user_only == 0 ]]; then
        clear_system
    fi
    # An application that stays keeps what it has stored.
    if [[ $FAILED == 1 ]]; then
        :
    elif [[ -n $HOME_FOLDER ]]; then
        as_user clear_home
        case $? in
            0) FOUND=1 ;;
            3) ;;
            *) FOUND=1 FAILED=1 ;;
        esac
    else
        printf '%s\n' 'There is no home folder to clear'
    fi

    if [[ $FAILED == 1 ]]; then
        heading 'Uninstallation failed: see the lines above'
        exit 1
    fi
    if [[ $FOUND == 0 ]]; then
        printf '%s\n' 'No installation found'
        exit 1
    fi
    heading "$NAME was removed"
}

main "$@"
