#!/usr/bin/env bash
# Unpack the source of an installed Debian package:  fetch_debian_source.sh SOURCE_PACKAGE DESTINATION [FOLDER...]
#
# With folders it's only these, as the upstream's archive has them, without Debian's changes: a small part of a large source.
#
# The version is that of the installed binary packages, so that all builds use the same. The archive's address comes from
# the machine's own lists; apt checks signature and hashes. The machine's lists and states stay as they are. What was
# fetched is kept in ${QORIO_CACHE:-~/.cache/qorioprocess} and checked again at each use.
set -euo pipefail

die() {
  echo "fetch_debian_source: $*" >&2
  exit 1
}

[ $# -ge 2 ] || die "usage: $0 SOURCE_PACKAGE DESTINATION [FOLDER...]"
name=$1
folders=("${@:3}")
mkdir -p "$(dirname "$2")"
destination=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
cache=${QORIO_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qorioprocess}

version=$(dpkg-query -W -f '${source:Package} ${source:Version} ${db:Status-Status}\n' |
  awk -v name="$name" '$1 == name && $3 == "installed" { print $2 }' | sort -u)
[ -n "$version" ] || die "no package built from '$name' is installed"
[ "$(wc -l <<<"$version")" -eq 1 ] || die "packages of several versions of '$name' are installed:" $version

kept=$cache/$name-${version//:/%3a}
work=$destination.fetch
rm -rf "$work"
mkdir -p "$work"

# What the tools say is shown only when something fails.
log=$work/log
: >"$log"
exec 3>&2
finish() {
  local status=$?
  [ $status -eq 0 ] || cat "$log" >&3
  rm -rf "$work"
}
trap finish EXIT

# Ask for the archives that Debian's packages were installed from.
list_archives() {
  apt-get "$@" indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u
}

download() {
  local options=(-q -o APT::Sandbox::User=root -o Dir::State="$work/state" -o Dir::State::status=/dev/null
                 -o Dir::Cache="$work/cache" -o Acquire::Retries=3)
  mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/files"

  local archives
  archives=$(list_archives)
  if [ -z "$archives" ]; then # a machine whose downloaded lists were removed
    apt-get "${options[@]}" update
    archives=$(list_archives "${options[@]}")
  fi
  [ -n "$archives" ] || die "this machine's package lists name no Debian archive"

  local keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  sed "s|^|deb-src [signed-by=$keyring] |" <<<"$archives" >"$work/sources.list"
  options+=(-o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=/dev/null)
  apt-get "${options[@]}" update
  (cd "$work/files" && apt-get "${options[@]}" source --download-only --only-source "$name=$version")
  (cd "$work/files" && sha256sum -- * >../SHA256SUMS && mv ../SHA256SUMS .)
}

intact() {
  [ -f "$kept/SHA256SUMS" ] && (cd "$kept" && sha256sum --check --quiet --strict SHA256SUMS) >>"$log" 2>&1
}

if ! intact; then
  download >>"$log" 2>&1
  rm -rf "$kept"
  mkdir -p "$cache"
  mv "$work/files" "$kept"
  intact || die "the kept source in $kept is damaged"
fi

if [ ${#folders[@]} -gt 0 ]; then
  mkdir "$work/source"
  tar --extract --file="$(ls "$kept"/*.orig.tar.*)" --directory="$work/source" --strip-components=1 --wildcards --no-wildcards-match-slash \
    "${folders[@]/#/*/}" >>"$log" 2>&1
else
  # dpkg-source compares the archives with the hashes in the .dsc file; its signature was checked by way of apt.
  dpkg-source --no-check --extract "$kept"/*.dsc "$work/source" >>"$log" 2>&1
fi
rm -rf "$destination"
mv "$work/source" "$destination"
