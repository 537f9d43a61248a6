# Shared by the tools/ scripts; sourced, not run.

# ensure_packages <pkg...>: installs the Debian packages that are missing, with one
# apt-get update, and nothing when all are there.
ensure_packages() {
    local missing=()
    local pkg
    for pkg in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'ok installed'; then
            missing+=("$pkg")
        fi
    done
    if [ "${#missing[@]}" -eq 0 ]; then
        return 0
    fi
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null 2>&1; then
            sudo=(sudo)
        else
            echo "missing packages (${missing[*]}) and not root" >&2
            return 1
        fi
    fi
    echo "== installing: ${missing[*]}"
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}
