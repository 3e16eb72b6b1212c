# Sourced by the commands at the root: installs the Debian packages that a command lacks.

# Packages that building and running need, the further ones that testing needs, those for the Windows build and its tests,
# those for the build in Microsoft's C++ ABI, and those for scripts/mutate.
run_packages=(g++ cmake ninja-build ccache libboost-dev nlohmann-json3-dev libpugixml-dev libsimpleini-dev libutf8proc-dev
              libcli11-dev libcpprest-dev dpkg-dev)
test_packages=(googletest librapidcheck-dev libbenchmark-dev liblo-dev clang-format clang-tidy python3 iproute2 binutils
               chromium-headless-shell librsvg2-bin icoutils)
windows_packages=(g++-mingw-w64-x86-64-posix)
windows_test_packages=(wine wine64 clang-19 xvfb xdotool)
microsoft_abi_packages=(clang-19 lld-19 llvm-19)
mutate_packages=(python3-clang-19)

# install_packages PACKAGE...: needs root or sudo only when something is missing.
install_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  # Node.js may come from elsewhere than Debian's packages.
  command -v node >/dev/null && command -v npm >/dev/null || missing+=(nodejs npm)
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing ${missing[*]}"
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
