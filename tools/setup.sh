# Sourced by ./run and ./test: makes sure that what a build needs is on the machine. Debian; as root or by sudo,
# otherwise says what to install.
need() {
    local missing=()
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    local as=()
    if [ "$(id -u)" != 0 ]; then
        if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then as=(sudo); else
            echo "Velmo needs some packages first:  apt-get install ${missing[*]}" >&2
            exit 1
        fi
    fi
    echo "installing ${missing[*]}" >&2
    "${as[@]}" apt-get update -qq >&2 && DEBIAN_FRONTEND=noninteractive "${as[@]}" apt-get install -y -qq "${missing[@]}" >&2
}
